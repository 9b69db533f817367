      *> Opens a file, writes to it and stops the run.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. LEAVE.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT LAST-FILE ASSIGN TO "LAST".
       DATA DIVISION.
       FILE SECTION.
       FD  LAST-FILE.
       01  LAST-RECORD.
           05  LAST-TEXT           PIC X(5).
       PROCEDURE DIVISION.
           OPEN OUTPUT LAST-FILE.
           MOVE "last" TO LAST-TEXT.
           WRITE LAST-RECORD.
           STOP RUN.
