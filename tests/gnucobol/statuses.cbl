      *> What opening, reading and writing give for files in all states.
      *> Arguments: names of files; each is opened and read to its end.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. STATUSES.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT DATA-FILE ASSIGN TO FILE-NAME FILE STATUS IS S.
           SELECT OPTIONAL MAYBE ASSIGN TO "maybe.xml"
               FILE STATUS IS S.
       DATA DIVISION.
       FILE SECTION.
       FD  DATA-FILE.
       01  DATA-RECORD.
           05  NUMBER-OF           PIC 9(4).
           05  PACKED-NUMBER       PIC S9(5) COMP-3.
           05  TEXT-OF             PIC X(10).
       FD  MAYBE.
       01  MAYBE-RECORD            PIC X(9).
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       01  FILE-NAME               PIC X(60).
       PROCEDURE DIVISION.
       MAIN-LINE.
           ACCEPT FILE-NAME FROM ARGUMENT-VALUE.
           PERFORM UNTIL FILE-NAME = SPACES
               PERFORM READ-ALL
               MOVE SPACES TO FILE-NAME
               ACCEPT FILE-NAME FROM ARGUMENT-VALUE
           END-PERFORM.
           PERFORM OPEN-OTHERWISE.
           PERFORM FILL-DISK.
           PERFORM LOCK-FILE.
           STOP RUN.

       READ-ALL.
           OPEN INPUT DATA-FILE.
           DISPLAY FUNCTION TRIM (FILE-NAME) ": open " S.
           IF S = "00"
               PERFORM UNTIL S = "46"
                   READ DATA-FILE
                   DISPLAY "  read " S " " NUMBER-OF " " PACKED-NUMBER
                       " [" TEXT-OF "]"
               END-PERFORM
               CLOSE DATA-FILE
               DISPLAY "  close " S
           END-IF.

       OPEN-OTHERWISE.
           MOVE "good.xml" TO FILE-NAME.
           OPEN I-O DATA-FILE. DISPLAY "i-o " S.
           OPEN EXTEND DATA-FILE. DISPLAY "extend " S.
           MOVE "short.xml" TO FILE-NAME.
           OPEN OUTPUT DATA-FILE. DISPLAY "other length " S.
           MOVE "folder.xml" TO FILE-NAME.
           OPEN OUTPUT DATA-FILE. DISPLAY "a folder " S.
           MOVE "nowhere/new.xml" TO FILE-NAME.
           OPEN OUTPUT DATA-FILE. DISPLAY "no folder " S.
           OPEN INPUT MAYBE. DISPLAY "optional " S.
           READ MAYBE. DISPLAY "  read " S.
           READ MAYBE. DISPLAY "  read " S.
           CLOSE MAYBE. DISPLAY "  close " S.
           OPEN OUTPUT MAYBE. DISPLAY "new optional " S.
           CLOSE MAYBE.
           DELETE FILE MAYBE. DISPLAY "  delete " S.

       FILL-DISK.
           MOVE "full.xml" TO FILE-NAME.
           OPEN OUTPUT DATA-FILE. DISPLAY "full disk " S.
           INITIALIZE DATA-RECORD.
           PERFORM 20000 TIMES
               WRITE DATA-RECORD
               IF S NOT = "00" EXIT PERFORM END-IF
           END-PERFORM.
           DISPLAY "  write " S.
           CLOSE DATA-FILE. DISPLAY "  close " S.

       LOCK-FILE.
           MOVE "good.xml" TO FILE-NAME.
           OPEN INPUT DATA-FILE. DISPLAY "before lock " S.
           CLOSE DATA-FILE WITH LOCK. DISPLAY "  lock " S.
           OPEN INPUT DATA-FILE. DISPLAY "  open " S.
