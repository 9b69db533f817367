      *> Statements out of order: what a file that is not open, or open
      *> in another way, gives.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. STATEMENTS.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT DATA-FILE ASSIGN TO "DATA" FILE STATUS IS S.
           SELECT OPTIONAL MAYBE ASSIGN TO "MAYBE" FILE STATUS IS S.
           SELECT UNWATCHED ASSIGN TO "NOTHING".
       DATA DIVISION.
       FILE SECTION.
       FD  DATA-FILE RECORD CONTAINS 20 CHARACTERS
           BLOCK CONTAINS 0 RECORDS DATA RECORD IS DATA-RECORD.
       01  DATA-RECORD.
           05  NUMBER-OF           PIC 9(4).
           05  TEXT-OF             PIC X(10).
       FD  MAYBE.
       01  MAYBE-RECORD.
           05  MAYBE-TEXT          PIC X(9).
       FD  UNWATCHED.
       01  UNWATCHED-RECORD.
           05  UNWATCHED-TEXT      PIC X(3).
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       01  LARGER.
           05  FILLER              PIC X(12).
           05  REST                PIC X(5) VALUE "rest".
       PROCEDURE DIVISION.
       DECLARATIVES.
       UNWATCHED-ERROR SECTION.
           USE AFTER STANDARD ERROR PROCEDURE ON UNWATCHED.
       SHOW-IT.
           DISPLAY "declarative " FUNCTION EXCEPTION-FILE.
       END DECLARATIVES.
       MAIN-PROGRAM SECTION.
       MAIN-LINE.
           CLOSE DATA-FILE. DISPLAY "close " S.
           READ DATA-FILE. DISPLAY "read " S.
           WRITE DATA-RECORD. DISPLAY "write " S.
           REWRITE DATA-RECORD. DISPLAY "rewrite " S.
           OPEN OUTPUT DATA-FILE. DISPLAY "open output " S.
           OPEN INPUT DATA-FILE. DISPLAY "open again " S.
           READ DATA-FILE. DISPLAY "read in output " S.
           REWRITE DATA-RECORD. DISPLAY "rewrite in output " S.
           MOVE 7 TO NUMBER-OF. MOVE "seven" TO TEXT-OF.
           WRITE DATA-RECORD. DISPLAY "write " S.
           CLOSE DATA-FILE. DISPLAY "close " S.
           OPEN INPUT DATA-FILE. DISPLAY "open input " S.
           WRITE DATA-RECORD. DISPLAY "write in input " S.
           READ DATA-FILE. DISPLAY "read " S " " DATA-RECORD.
           REWRITE DATA-RECORD. DISPLAY "rewrite in input " S.
           READ DATA-FILE. DISPLAY "read at end " S " " DATA-RECORD.
           READ DATA-FILE. DISPLAY "read past end " S.
           CLOSE DATA-FILE. DISPLAY "close " S.
           CLOSE DATA-FILE. DISPLAY "close again " S.
           DELETE FILE DATA-FILE. DISPLAY "delete " S.
           OPEN INPUT DATA-FILE. DISPLAY "open deleted " S.
           DELETE FILE DATA-FILE. DISPLAY "delete again " S.
           PERFORM OPTIONAL-FILE.
           PERFORM WAYS-TO-CLOSE.
           OPEN INPUT UNWATCHED.
           READ UNWATCHED.
           OPEN OUTPUT UNWATCHED.
           CLOSE UNWATCHED.
           CLOSE UNWATCHED.
           STOP RUN.

       OPTIONAL-FILE.
           OPEN INPUT MAYBE. DISPLAY "optional " S.
           READ MAYBE AT END DISPLAY "at end " S END-READ.
           READ MAYBE. DISPLAY "again " S.
           CLOSE MAYBE. DISPLAY "close " S.
           OPEN OUTPUT MAYBE. DISPLAY "optional output " S.
           MOVE "from here" TO LARGER.
           WRITE MAYBE-RECORD FROM LARGER.
           DISPLAY "write from " S.
           CLOSE MAYBE.
           OPEN INPUT MAYBE. DISPLAY "optional there " S.
           READ MAYBE INTO LARGER NOT AT END
               DISPLAY "into " S " [" LARGER "]".
           READ MAYBE INTO LARGER AT END
               DISPLAY "not into " S " [" LARGER "]".
           CLOSE MAYBE.

       WAYS-TO-CLOSE.
           OPEN OUTPUT DATA-FILE.
           CLOSE DATA-FILE REEL. DISPLAY "reel " S.
           WRITE DATA-RECORD. DISPLAY "  write " S.
           CLOSE DATA-FILE UNIT. DISPLAY "unit " S.
           OPEN INPUT DATA-FILE. DISPLAY "  open " S.
           CLOSE DATA-FILE WITH NO REWIND. DISPLAY "no rewind " S.
           READ DATA-FILE. DISPLAY "  read " S.
           OPEN INPUT DATA-FILE. DISPLAY "  open " S.
           CLOSE DATA-FILE. DISPLAY "  close " S.
