      *> Statements out of order: what a file that is not open, or open
      *> in another way, gives.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. STATEMENTS.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT DATA-FILE ASSIGN TO "DATA" FILE STATUS IS S.
       DATA DIVISION.
       FILE SECTION.
       FD  DATA-FILE.
       01  DATA-RECORD.
           05  NUMBER-OF           PIC 9(4).
           05  TEXT-OF             PIC X(10).
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       PROCEDURE DIVISION.
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
           STOP RUN.
