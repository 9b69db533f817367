      *> Files that are no business of the handler beside one that is.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. KEYED.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT SLOTS ASSIGN TO "slots.xml" ORGANIZATION RELATIVE
               ACCESS DYNAMIC RELATIVE KEY SLOT FILE STATUS IS S.
           SELECT MASTER ASSIGN TO "MASTER" ORGANIZATION INDEXED
               ACCESS DYNAMIC RECORD KEY MASTER-KEY FILE STATUS IS S.
           SELECT LIST ASSIGN TO "LIST" FILE STATUS IS S.
           SELECT SCREEN-FILE ASSIGN TO DISPLAY
               ORGANIZATION LINE SEQUENTIAL.
       DATA DIVISION.
       FILE SECTION.
       FD  SLOTS.
       01  SLOT-RECORD             PIC X(8).
       FD  MASTER.
       01  MASTER-RECORD.
           05  MASTER-KEY          PIC X(3).
           05  MASTER-TEXT         PIC X(5).
       FD  LIST.
       01  LIST-RECORD.
           05  LIST-KEY            PIC X(3).
           05  LIST-TEXT           PIC X(5).
       FD  SCREEN-FILE.
       01  SCREEN-RECORD           PIC X(12).
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       01  SLOT                    PIC 99.
       PROCEDURE DIVISION.
           OPEN OUTPUT SLOTS.
           MOVE 3 TO SLOT. MOVE "third" TO SLOT-RECORD.
           WRITE SLOT-RECORD. DISPLAY "write " S.
           CLOSE SLOTS.
           OPEN I-O SLOTS.
           MOVE 2 TO SLOT. READ SLOTS. DISPLAY "read " S.
           MOVE 3 TO SLOT. READ SLOTS. DISPLAY "read " S SLOT-RECORD.
           REWRITE SLOT-RECORD. DISPLAY "rewrite " S.
           DELETE SLOTS. DISPLAY "delete " S.
           CLOSE SLOTS.
           OPEN OUTPUT MASTER.
           MOVE "b" TO MASTER-KEY. WRITE MASTER-RECORD.
           MOVE "a" TO MASTER-KEY. WRITE MASTER-RECORD.
           MOVE "c" TO MASTER-KEY. WRITE MASTER-RECORD.
           WRITE MASTER-RECORD. DISPLAY "again " S.
           CLOSE MASTER.
           OPEN INPUT MASTER OUTPUT LIST SCREEN-FILE.
           MOVE "b" TO MASTER-KEY.
           START MASTER KEY >= MASTER-KEY. DISPLAY "start " S.
           PERFORM 2 TIMES
               READ MASTER NEXT
               WRITE LIST-RECORD FROM MASTER-RECORD
           END-PERFORM.
           MOVE "a" TO MASTER-KEY.
           READ MASTER KEY IS MASTER-KEY. DISPLAY "read " S.
           WRITE SCREEN-RECORD FROM MASTER-RECORD.
           CLOSE MASTER LIST SCREEN-FILE.
           OPEN INPUT LIST.
           PERFORM 3 TIMES
               READ LIST
               DISPLAY "list " S LIST-KEY
           END-PERFORM.
           CLOSE LIST.
           STOP RUN.
