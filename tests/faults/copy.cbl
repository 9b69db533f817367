      *> Writes records into out.xml, adds them to more.xml, or reads those
      *> of in.xml: the argument says which. Ends with status 1 when an
      *> operation fails.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. COPY-RECORDS.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT ITEMS ASSIGN TO FILE-NAME FILE STATUS IS S.
       DATA DIVISION.
       FILE SECTION.
       FD  ITEMS.
       01  ITEM.
           05  ITEM-NO             PIC 9(4).
           05  PRICE               PIC S9(5)V99 COMP-3.
           05  NAME-OF             PIC X(12).
       WORKING-STORAGE SECTION.
       01  FILE-NAME               PIC X(20).
       01  S                       PIC XX.
       PROCEDURE DIVISION.
       MAIN-LINE.
           ACCEPT FILE-NAME FROM ARGUMENT-VALUE.
           EVALUATE FILE-NAME
               WHEN "out.xml"
                   OPEN OUTPUT ITEMS
                   PERFORM WRITE-ALL
               WHEN "more.xml"
                   OPEN EXTEND ITEMS
                   PERFORM WRITE-ALL
               WHEN OTHER
                   PERFORM READ-ALL
           END-EVALUATE.
           STOP RUN.

       WRITE-ALL.
           PERFORM CHECK-STATUS.
           MOVE 12.34 TO PRICE.
           MOVE "A title" TO NAME-OF.
           PERFORM VARYING ITEM-NO FROM 1 BY 1 UNTIL ITEM-NO > 3
               WRITE ITEM
               PERFORM CHECK-STATUS
           END-PERFORM.
           CLOSE ITEMS.
           PERFORM CHECK-STATUS.

       READ-ALL.
           OPEN INPUT ITEMS.
           PERFORM CHECK-STATUS.
           PERFORM UNTIL S = "10"
               READ ITEMS
               IF S NOT = "10"
                   PERFORM CHECK-STATUS
                   DISPLAY ITEM-NO " " PRICE " " NAME-OF
               END-IF
           END-PERFORM.
           CLOSE ITEMS.
           PERFORM CHECK-STATUS.

       CHECK-STATUS.
           IF S NOT = "00"
               DISPLAY "status " S
               MOVE 1 TO RETURN-CODE
               STOP RUN
           END-IF.
