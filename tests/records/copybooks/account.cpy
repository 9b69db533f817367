000100***************************************************************** ACCTMAST
000200*  ACCOUNT MASTER RECORD - REVISED 03/14/87  J.SMITH              ACCTMAST
000300***************************************************************** ACCTMAST
000400 01  ACCT-MASTER-RECORD.                                          ACCTMAST
000500     03  ACCT-KEY.                                                ACCTMAST
000600         05  ACCT-BRANCH          PIC 9(3).                       ACCTMAST
000700         05  ACCT-NUMBER          PIC 9(7).                       ACCTMAST
000800         05  ACCT-CHECK-DIGIT     PIC 9.                          ACCTMAST
000900     03  ACCT-TYPE                PIC X(2).                       ACCTMAST
001000         88  ACCT-CHECKING        VALUE 'CK'.                     ACCTMAST
001100         88  ACCT-SAVINGS         VALUE 'SV' 'S1' THRU 'S9'.      ACCTMAST
001200         88  ACCT-LOAN            VALUES ARE 'LN',                ACCTMAST
001300                                  'MT'.                           ACCTMAST
001400     03  FILLER                   PIC X(5).                       ACCTMAST
001500     03  ACCT-BALANCES USAGE COMP-3.                              ACCTMAST
001600         05  ACCT-CUR-BAL         PIC S9(9)V99.                   ACCTMAST
001700         05  ACCT-AVG-BAL         PIC S9(9)V99.                   ACCTMAST
001800         05  ACCT-RATE            PIC SV9(5).                     ACCTMAST
001900     03  ACCT-DATES SIGN LEADING SEPARATE.                        ACCTMAST
002000         05  ACCT-OPENED          PIC S9(6).                      ACCTMAST
002100         05  ACCT-CLOSED          PIC S9(6) SIGN TRAILING.        ACCTMAST
002200     03  ACCT-NAME-LIT            PIC X(30) VALUE 'THIS IS A CONTIACCTMAST
002300-    'ITERAL'.                                                    ACCTMAST
002400     03  ACCT-HIST OCCURS 12 TIMES                                ACCTMAST
002500             ASCENDING KEY IS ACCT-HIST-MONTH                     ACCTMAST
002600             INDEXED BY ACCT-IX.                                  ACCTMAST
002700         05  ACCT-HIST-MONTH      PIC 99.                         ACCTMAST
002800         05  ACCT-HIST-DETAIL OCCURS 2.                           ACCTMAST
002900             07  ACCT-HIST-AMT    PIC S9(7)V99 COMP-3.            ACCTMAST
003000             07  ACCT-HIST-CODE   PIC X.                          ACCTMAST
003100     03  ACCT-TYPE-AREA           PIC X(20).                      ACCTMAST
003200     03  ACCT-CHK-AREA REDEFINES ACCT-TYPE-AREA.                  ACCTMAST
003300         05  CHK-FEE              PIC 9(3)V99.                    ACCTMAST
003400         05  CHK-SUB.                                             ACCTMAST
003500             07  CHK-A            PIC X(4).                       ACCTMAST
003600             07  CHK-B REDEFINES CHK-A PIC 9(4).                  ACCTMAST
003700         05  FILLER               PIC X(11).                      ACCTMAST
003800     03  ACCT-LOAN-AREA REDEFINES ACCT-TYPE-AREA.                 ACCTMAST
003900         05  LOAN-AMT             PIC S9(9)V99 COMP SYNC.         ACCTMAST
004000         05  LOAN-SCALE           PIC 9(3)PPP.                    ACCTMAST
004100         05  LOAN-FRACT           PIC VPP9(2).                    ACCTMAST
004200     03  ACCT-EDIT                PIC $$$,$$9.99CR.               ACCTMAST
004300     03  ACCT-EDIT2               PIC -(7)9.99 BLANK WHEN ZERO.   ACCTMAST
004400     03  ACCT-NAT                 PIC N(4) USAGE NATIONAL.        ACCTMAST
004500     03  ACCT-CNT                 PIC 99 COMP.                    ACCTMAST
004600     03  ACCT-TRANS OCCURS 5 TIMES.                               ACCTMAST
004700         05  TR-DATE              PIC 9(8).                       ACCTMAST
004800         05  TR-AMT               PIC S9(5)V99 COMP-3.            ACCTMAST
