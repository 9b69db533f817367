      *> Several programs in one source: files of the same name in two of
      *> them, CANCEL, EXTERNAL and GLOBAL files, SORT.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. UNITS.
       PROCEDURE DIVISION.
           CALL "WRITER".
           CANCEL "WRITER".
           CALL "WRITER".
           CALL "WRITER".
           CANCEL "WRITER".
           CALL "READER".
           CALL "SORTER".
           CALL "LEFT-OPEN".
           STOP RUN.
       END PROGRAM UNITS.

       IDENTIFICATION DIVISION.
       PROGRAM-ID. WRITER.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT STORE ASSIGN TO "FIGURES" FILE STATUS IS S.
       DATA DIVISION.
       FILE SECTION.
       FD  STORE.
       01  STORE-RECORD.
           05  NUMBER-OF           PIC 9(5).
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       01  N                       PIC 9(5) VALUE 0.
       PROCEDURE DIVISION.
           IF N = 0
               OPEN OUTPUT STORE DISPLAY "writer opens " S
           END-IF.
           ADD 1 TO N.
           COMPUTE NUMBER-OF = 100 - N.
           WRITE STORE-RECORD.
           DISPLAY "writer writes " S " " NUMBER-OF.
           GOBACK.
       END PROGRAM WRITER.

       PROGRAM-ID. READER.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT FIGURES ASSIGN TO "FIGURES" FILE STATUS IS S.
           SELECT STORE ASSIGN TO "SHARED" FILE STATUS IS S.
       DATA DIVISION.
       FILE SECTION.
       FD  FIGURES GLOBAL.
       01  NUMBER-RECORD GLOBAL.
           05  NUMBER-OF           PIC 9(5).
       FD  STORE EXTERNAL.
       01  STORE-RECORD.
           05  TEXT-OF             PIC X(12).
       WORKING-STORAGE SECTION.
       01  S GLOBAL                PIC XX.
       PROCEDURE DIVISION.
           OPEN INPUT FIGURES.
           PERFORM 3 TIMES CALL "NEXT-NUMBER" END-PERFORM.
           CLOSE FIGURES.
           OPEN OUTPUT STORE.
           DISPLAY "shared opens " S.
           MOVE "from reader" TO TEXT-OF.
           WRITE STORE-RECORD.
           CALL "SHARER".
           MOVE "from both" TO TEXT-OF.
           WRITE STORE-RECORD.
           CLOSE STORE.
           OPEN INPUT STORE.
           PERFORM 3 TIMES
               READ STORE
               DISPLAY "shared " S " " TEXT-OF
           END-PERFORM.
           CLOSE STORE.
           GOBACK.

       PROGRAM-ID. NEXT-NUMBER.
       PROCEDURE DIVISION.
           READ FIGURES.
           DISPLAY "reader " S " " NUMBER-OF.
           GOBACK.
       END PROGRAM NEXT-NUMBER.
       END PROGRAM READER.

       IDENTIFICATION DIVISION.
       PROGRAM-ID. SHARER.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT STORE ASSIGN TO "SHARED" FILE STATUS IS S.
       DATA DIVISION.
       FILE SECTION.
       FD  STORE EXTERNAL.
       01  STORE-RECORD.
           05  TEXT-OF             PIC X(12).
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       PROCEDURE DIVISION.
           MOVE "from sharer" TO TEXT-OF.
           WRITE STORE-RECORD.
           DISPLAY "sharer writes " S.
           GOBACK.
       END PROGRAM SHARER.

       IDENTIFICATION DIVISION.
       PROGRAM-ID. SORTER.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT FIGURES ASSIGN TO "FIGURES" FILE STATUS IS S.
           SELECT SORTED ASSIGN TO "SORTED" FILE STATUS IS S.
           SELECT COPIED ASSIGN TO "copied.dat" FILE STATUS IS S.
           SELECT WORK ASSIGN TO "WORK".
       DATA DIVISION.
       FILE SECTION.
       FD  FIGURES.
       01  NUMBER-RECORD.
           05  NUMBER-OF           PIC 9(5).
       FD  SORTED.
       01  SORTED-RECORD.
           05  SORTED-NUMBER       PIC 9(5).
           05  NOTE                PIC X(3).
       FD  COPIED.
       01  COPIED-RECORD           PIC X(5).
       SD  WORK.
       01  WORK-RECORD.
           05  KEY-OF              PIC 9(5).
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       PROCEDURE DIVISION.
           SORT WORK ON ASCENDING KEY KEY-OF
               USING FIGURES GIVING SORTED COPIED.
           OPEN INPUT SORTED COPIED.
           PERFORM 2 TIMES
               READ SORTED
               DISPLAY "sorted " S " " SORTED-RECORD "|"
               READ COPIED
               DISPLAY "copied " S " " COPIED-RECORD
           END-PERFORM.
           CLOSE SORTED COPIED.
           SORT WORK ON DESCENDING KEY KEY-OF
               USING COPIED GIVING FIGURES.
           OPEN INPUT FIGURES.
           READ FIGURES.
           DISPLAY "greatest " S " " NUMBER-OF.
           CLOSE FIGURES.
           GOBACK.
       END PROGRAM SORTER.

       IDENTIFICATION DIVISION.
       PROGRAM-ID. LEFT-OPEN.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT FIRST-ONE ASSIGN TO "LEFT" FILE STATUS IS S.
           SELECT SECOND-ONE ASSIGN TO "LEFT" FILE STATUS IS S.
       DATA DIVISION.
       FILE SECTION.
       FD  FIRST-ONE.
       01  FIRST-RECORD.
           05  TEXT-OF             PIC X(5).
       FD  SECOND-ONE.
       01  SECOND-RECORD.
           05  TEXT-OF             PIC X(5).
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       PROCEDURE DIVISION.
           OPEN OUTPUT FIRST-ONE.
           MOVE "one" TO TEXT-OF OF FIRST-RECORD.
           WRITE FIRST-RECORD.
           CLOSE FIRST-ONE.
           OPEN INPUT SECOND-ONE.
           READ SECOND-ONE.
           DISPLAY "second reads " S " " TEXT-OF OF SECOND-RECORD.
           STOP RUN.
       END PROGRAM LEFT-OPEN.
