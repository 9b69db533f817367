      *> Makes the files that its arguments name.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. MAKE-FILES.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT DATA-FILE ASSIGN TO FILE-NAME FILE STATUS IS S.
       DATA DIVISION.
       FILE SECTION.
       FD  DATA-FILE.
       01  DATA-RECORD.
           05  TEXT-OF             PIC X(5).
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       01  FILE-NAME               PIC X(60).
       PROCEDURE DIVISION.
           ACCEPT FILE-NAME FROM ARGUMENT-VALUE.
           PERFORM UNTIL FILE-NAME = SPACES
               OPEN OUTPUT DATA-FILE
               DISPLAY FILE-NAME S
               IF S = "00" CLOSE DATA-FILE END-IF
               MOVE SPACES TO FILE-NAME
               ACCEPT FILE-NAME FROM ARGUMENT-VALUE
           END-PERFORM.
           STOP RUN.
