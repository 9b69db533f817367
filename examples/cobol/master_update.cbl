      *> Brings the changes into the customers and writes the new ones.
      *> Both inputs are in order of their numbers.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. MASTER-UPDATE.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT OLD-MASTER ASSIGN TO "CUSTOMERS".
           SELECT CHANGES ASSIGN TO "CHANGES".
           SELECT NEW-MASTER ASSIGN TO "UPDATED".
       DATA DIVISION.
       FILE SECTION.
       FD  OLD-MASTER.
           COPY "customers.cpy".
       FD  CHANGES.
           COPY "changes.cpy".
       FD  NEW-MASTER.
       01  NEW-CUSTOMER.
           05  NEW-ID              PIC 9(5).
           05  NEW-NAME            PIC X(15).
           05  NEW-BALANCE         PIC S9(7)V99 COMP-3.
       WORKING-STORAGE SECTION.
       01  OLD-KEY                 PIC 9(5).
       01  CHANGE-KEY              PIC 9(5).
       01  WRITTEN                 PIC 9(3) VALUE 0.
       01  SHOWN-BALANCE           PIC -(6)9.99.
       PROCEDURE DIVISION.
       MAIN-LINE.
           OPEN INPUT OLD-MASTER CHANGES OUTPUT NEW-MASTER.
           PERFORM READ-MASTER.
           PERFORM READ-CHANGE.
           PERFORM UNTIL OLD-KEY = 99999 AND CHANGE-KEY = 99999
               EVALUATE TRUE
                   WHEN OLD-KEY < CHANGE-KEY
                       WRITE NEW-CUSTOMER FROM CUSTOMER
                       PERFORM SHOW-WRITTEN
                       PERFORM READ-MASTER
                   WHEN OLD-KEY = CHANGE-KEY
                       PERFORM CHANGE-CUSTOMER
                       PERFORM READ-CHANGE
                   WHEN OTHER
                       PERFORM ADD-CUSTOMER
                       PERFORM READ-CHANGE
               END-EVALUATE
           END-PERFORM.
           CLOSE OLD-MASTER CHANGES NEW-MASTER.
           DISPLAY WRITTEN " customers written".
           STOP RUN.

       READ-MASTER.
           READ OLD-MASTER
               AT END MOVE 99999 TO OLD-KEY
               NOT AT END MOVE CUST-ID TO OLD-KEY
           END-READ.

       READ-CHANGE.
           READ CHANGES
               AT END MOVE 99999 TO CHANGE-KEY
               NOT AT END MOVE CHANGE-ID TO CHANGE-KEY
           END-READ.

       CHANGE-CUSTOMER.
           EVALUATE TRUE
               WHEN IS-PAYMENT
                   ADD CHANGE-AMOUNT TO BALANCE
               WHEN IS-DELETION
                   DISPLAY "deleted: " CUST-NAME
                   PERFORM READ-MASTER
               WHEN OTHER
                   DISPLAY "is there already: " CHANGE-ID
           END-EVALUATE.

       ADD-CUSTOMER.
           IF NOT IS-ADDITION
               DISPLAY "there is no customer " CHANGE-ID
           ELSE
               MOVE CHANGE-ID TO NEW-ID
               MOVE CHANGE-NAME TO NEW-NAME
               MOVE CHANGE-AMOUNT TO NEW-BALANCE
               WRITE NEW-CUSTOMER
               PERFORM SHOW-WRITTEN
           END-IF.

       SHOW-WRITTEN.
           ADD 1 TO WRITTEN.
           MOVE NEW-BALANCE TO SHOWN-BALANCE.
           DISPLAY NEW-ID " " NEW-NAME SHOWN-BALANCE.
