      *> Fields whose text does not begin at their start.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. EDITED.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT LIST ASSIGN TO "LIST" FILE STATUS IS S.
       DATA DIVISION.
       FILE SECTION.
       FD  LIST.
       01  LIST-RECORD.
           05  ON-RIGHT            PIC X(8) JUSTIFIED RIGHT.
           05  PLAIN               PIC ZZ,ZZ9.99.
           05  MINUS-BEHIND        PIC ZZ9-.
           05  PLUS-BEHIND         PIC ZZ9+.
           05  CREDIT              PIC ZZ9.9CR.
           05  DEBIT               PIC $$$9.99BDB.
           05  GAPS                PIC BBX(3)BX.
           05  MANY-MINUS          PIC -(4)9.
           05  MANY-PLUS       PIC +++9.
           05  BLANK-BEHIND        PIC ZZ9B.
           05  BLANKS-AND-SIGN     PIC Z(4)B(2)-.
           05  SLASHES             PIC 99/99/99.
           05  STARS               PIC ***9.
           05  BLANK-ZERO          PIC ZZ9 BLANK WHEN ZERO.
           05  ROWS OCCURS 2.
               10  ROW-NUMBER      PIC ZZZ9.
               10  ROW-NAME        PIC A(5) JUSTIFIED.
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       01  N                       PIC S9(4)V99.
       PROCEDURE DIVISION.
           OPEN OUTPUT LIST.
           PERFORM VARYING N FROM -12.5 BY 6.25 UNTIL N > 13
               MOVE "ab" TO ON-RIGHT GAPS ROW-NAME (1) ROW-NAME (2)
               MOVE N TO PLAIN MINUS-BEHIND PLUS-BEHIND CREDIT DEBIT
                   MANY-MINUS MANY-PLUS BLANK-BEHIND
                   BLANKS-AND-SIGN STARS BLANK-ZERO ROW-NUMBER (1)
               MOVE 180112 TO SLASHES
               MOVE 7 TO ROW-NUMBER (2)
               WRITE LIST-RECORD
           END-PERFORM.
           CLOSE LIST.
           OPEN INPUT LIST.
           PERFORM 5 TIMES
               READ LIST
               DISPLAY "[" LIST-RECORD "] " S
           END-PERFORM.
           CLOSE LIST.
           STOP RUN.
