      *> One operation on a file, chosen by the caller.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. OPERATIONS.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT F ASSIGN TO WS-NAME ORGANIZATION SEQUENTIAL
               FILE STATUS WS-STATUS.
       DATA DIVISION.
       FILE SECTION.
       FD  F.
       01  ITEM.
           03  ITEM-NO     PIC 9(4).
           03  ITEM-NAME   PIC X(6).
           03  PRICE       PIC S9(3)V99 COMP-3.
           03  SIZES       PIC 9 OCCURS 2.
       WORKING-STORAGE SECTION.
       01  WS-NAME         PIC X(200).
       01  WS-STATUS       PIC XX.
       LINKAGE SECTION.
       01  OPERATION       PIC X.
       01  AREA-OF-CALLER  PIC X(15).
       01  STATUS-OF-CALL  PIC XX.
       01  NAME-OF-FILE    PIC X(200).
       PROCEDURE DIVISION USING OPERATION AREA-OF-CALLER
               STATUS-OF-CALL NAME-OF-FILE.
           MOVE NAME-OF-FILE TO WS-NAME
           MOVE "--" TO WS-STATUS
           EVALUATE OPERATION
               WHEN "I" OPEN INPUT F
               WHEN "O" OPEN OUTPUT F
               WHEN "E" OPEN EXTEND F
               WHEN "U" OPEN I-O F
               WHEN "C" CLOSE F
               WHEN "L" CLOSE F WITH LOCK
               WHEN "R" PERFORM READ-ITEM
               WHEN "X" REWRITE ITEM FROM AREA-OF-CALLER
               WHEN "W" WRITE ITEM FROM AREA-OF-CALLER
           END-EVALUATE
           MOVE WS-STATUS TO STATUS-OF-CALL
           GOBACK.
       READ-ITEM.
           READ F
           IF WS-STATUS = "00" OR "04" MOVE ITEM TO AREA-OF-CALLER.
