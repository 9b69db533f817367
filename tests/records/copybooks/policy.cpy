000100******************************************************************POL00010
000200*  POLICY MASTER RECORD            INSTALLED 03/1987             *POL00020
000300******************************************************************POL00030
000400     EJECT                                                        POL00040
000500 01  POLICY-RECORD.                                               POL00050
000600     03  POL-KEY.                                                 POL00060
000700         05  POL-BRANCH          PICTURE IS 9(3).                 POL00070
000800         05  POL-NUMBER          PICTURE IS 9(7)                  POL00080
000900                                 USAGE IS COMPUTATIONAL-3.        POL00090
001000     03  POL-HOLDER              PIC X(30)  VALUE 'THIS LITERAL POL00100
001100-    'GOES ON; IT''S LONG'.                                       POL00110
001200     SKIP2                                                        POL00120
001300     03  POL-STATUS              PIC X.                           POL00130
001400         88  POL-ACTIVE          VALUE 'A'.                       POL00140
001500         88  POL-ENDED           VALUES ARE 'C' 'D'               POL00150
001600                                 'L' THRU 'P'.                    POL00160
001700D    03  POL-TRACE               PIC X(9).                        POL00170
001800/                                                                 POL00180
001900     03  POL-PREMIUM OCCURS 12 TIMES                              POL00190
002000             INDEXED BY POL-IX, POL-IY.                           POL00200
002100         05  POL-DUE             PIC S9(5)V99 COMP-3.             POL00210
002200         05  POL-PAID-INDIC                                       POL00220
002300-    ATOR                        PIC 9  BLANK WHEN ZERO.          POL00230
002400* sxml: when POL-ENDED                                            POL00240
002500     03  POL-END-DATE            PIC 9(6).                        POL00250
002600     03  POL-END-PARTS REDEFINES POL-END-DATE.                    POL00260
002700         05  POL-END-YY          PIC 99.                          POL00270
002800         05  FILLER              PIC X(4).                        POL00280
002900 66  POL-BOTH RENAMES POL-KEY THRU POL-HOLDER.                    POL00290
