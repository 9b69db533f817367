      *> Writes a document and ends in the requested way.
      *> Arguments: how it ends, what is written.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. ENDING.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT RESULT ASSIGN TO "result.xml" FILE STATUS IS S.
           SELECT AGAIN ASSIGN TO "result.xml" FILE STATUS IS S.
       DATA DIVISION.
       FILE SECTION.
       FD  RESULT.
       01  RESULT-RECORD.
           05  RESULT-TEXT         PIC X(8).
       FD  AGAIN.
       01  AGAIN-RECORD.
           05  AGAIN-TEXT          PIC X(8).
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       01  HOW                     PIC X(8).
       01  WHAT                    PIC X(8).
       01  CHILD                   PIC S9(9) COMP-5.
       LINKAGE SECTION.
       01  TARGET-ITEM                 PIC X.
       PROCEDURE DIVISION.
           ACCEPT HOW FROM ARGUMENT-VALUE.
           ACCEPT WHAT FROM ARGUMENT-VALUE.
           IF HOW = "often"
               PERFORM WRITE-IT UNTIL 1 = 2
           END-IF.
           IF HOW = "fetch"
               OPEN INPUT AGAIN DISPLAY "waiting" UPON SYSERR
               CALL "C$SLEEP" USING 30
           END-IF.
           IF HOW = "extend"
               OPEN EXTEND RESULT DISPLAY "extend " S
           ELSE
               OPEN OUTPUT RESULT DISPLAY "open " S
           END-IF.
           MOVE WHAT TO RESULT-TEXT.
           WRITE RESULT-RECORD. DISPLAY "write " S.
           EVALUATE HOW
               WHEN "stop" STOP RUN
               WHEN "again" WRITE RESULT-RECORD
               WHEN "goback" GOBACK
               WHEN "abort" CALL "there is no such program"
               WHEN "crash"
                   SET ADDRESS OF TARGET-ITEM TO NULL
                   MOVE "x" TO TARGET-ITEM
               WHEN "wait"
                   DISPLAY "waiting" UPON SYSERR
                   CALL "C$SLEEP" USING 30
               WHEN "fork"
                   CALL "CBL_GC_FORK" RETURNING CHILD
                   IF CHILD = 0
                       WRITE RESULT-RECORD DISPLAY "child writes " S
                       STOP RUN
                   END-IF
                   CALL "C$SLEEP" USING 1
               WHEN "twice"
                   OPEN OUTPUT AGAIN DISPLAY "again " S
                   OPEN INPUT AGAIN DISPLAY "read " S
           END-EVALUATE.
           CLOSE RESULT. DISPLAY "close " S.
           STOP RUN.

       WRITE-IT.
           OPEN OUTPUT RESULT.
           MOVE WHAT TO RESULT-TEXT.
           PERFORM 20 TIMES WRITE RESULT-RECORD END-PERFORM.
           CLOSE RESULT.
