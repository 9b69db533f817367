      *> Writes the files that the other samples read.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. MAKE-DATA.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT ORDERS ASSIGN TO "ORDERS".
           SELECT CUSTOMERS ASSIGN TO "CUSTOMERS".
           SELECT CHANGES ASSIGN TO "CHANGES".
           SELECT LEDGER ASSIGN TO "LEDGER".
       DATA DIVISION.
       FILE SECTION.
       FD  ORDERS.
           COPY "orders.cpy".
       FD  CUSTOMERS.
           COPY "customers.cpy".
       FD  CHANGES.
           COPY "changes.cpy".
       FD  LEDGER.
           COPY "ledger.cpy".
       WORKING-STORAGE SECTION.
       01  I                       PIC 9.
       PROCEDURE DIVISION.
       MAIN-LINE.
           PERFORM WRITE-ORDERS.
           PERFORM WRITE-CUSTOMERS.
           PERFORM WRITE-CHANGES.
           PERFORM WRITE-LEDGER.
           STOP RUN.

       WRITE-ORDERS.
           OPEN OUTPUT ORDERS.
           PERFORM CLEAR-ORDER.
           MOVE 417 TO ORDER-NO.
           MOVE 20261118 TO ORDER-DATE.
           MOVE "Smith & Sons" TO ORDER-CUSTOMER.
           MOVE -2.5 TO ORDER-DISCOUNT.
           MOVE 3 TO LINE-COUNT.
           MOVE "Lamp" TO ARTICLE (1).
           MOVE 2 TO QUANTITY (1).
           MOVE 19.95 TO UNIT-PRICE (1).
           MOVE "white" TO SHADE (1 1).
           MOVE "ivory" TO SHADE (1 2).
           MOVE "Cable <5m>" TO ARTICLE (2).
           MOVE 12 TO QUANTITY (2).
           MOVE 3.10 TO UNIT-PRICE (2).
           MOVE "black" TO SHADE (2 2).
           MOVE "Switch" TO ARTICLE (3).
           MOVE 1 TO QUANTITY (3).
           MOVE 7 TO UNIT-PRICE (3).
           WRITE ORDER-RECORD.
           PERFORM CLEAR-ORDER.
           MOVE 418 TO ORDER-NO.
           MOVE 20261119 TO ORDER-DATE.
           MOVE "Miller" TO ORDER-CUSTOMER.
           MOVE 1 TO LINE-COUNT.
           MOVE "Chair" TO ARTICLE (1).
           MOVE 4 TO QUANTITY (1).
           MOVE 120 TO UNIT-PRICE (1).
           MOVE "oak" TO SHADE (1 1).
           MOVE "beech" TO SHADE (1 2).
           WRITE ORDER-RECORD.
           CLOSE ORDERS.

       CLEAR-ORDER.
           INITIALIZE ORDER-RECORD.
           MOVE 5 TO LINE-COUNT.
           PERFORM VARYING I FROM 1 BY 1 UNTIL I > 5
               INITIALIZE ORDER-LINE (I)
           END-PERFORM.

       WRITE-CUSTOMERS.
           OPEN OUTPUT CUSTOMERS.
           MOVE 1 TO CUST-ID. MOVE "Adams" TO CUST-NAME.
           MOVE 100.50 TO BALANCE. WRITE CUSTOMER.
           MOVE 3 TO CUST-ID. MOVE "Baker" TO CUST-NAME.
           MOVE -20 TO BALANCE. WRITE CUSTOMER.
           MOVE 5 TO CUST-ID. MOVE "Clark" TO CUST-NAME.
           MOVE 0 TO BALANCE. WRITE CUSTOMER.
           CLOSE CUSTOMERS.

       WRITE-CHANGES.
           OPEN OUTPUT CHANGES.
           MOVE SPACES TO CHANGE-RECORD.
           MOVE 2 TO CHANGE-ID. MOVE "A" TO CHANGE-KIND.
           MOVE "Allen" TO CHANGE-NAME. MOVE 12.25 TO CHANGE-AMOUNT.
           WRITE CHANGE-RECORD.
           MOVE 3 TO CHANGE-ID. MOVE "P" TO CHANGE-KIND.
           MOVE SPACES TO CHANGE-NAME. MOVE 45 TO CHANGE-AMOUNT.
           WRITE CHANGE-RECORD.
           MOVE 4 TO CHANGE-ID. MOVE "P" TO CHANGE-KIND.
           MOVE 1 TO CHANGE-AMOUNT.
           WRITE CHANGE-RECORD.
           MOVE 5 TO CHANGE-ID. MOVE "D" TO CHANGE-KIND.
           MOVE 0 TO CHANGE-AMOUNT.
           WRITE CHANGE-RECORD.
           CLOSE CHANGES.

       WRITE-LEDGER.
           OPEN OUTPUT LEDGER.
           MOVE SPACES TO ACCOUNT.
           MOVE "A" TO RECORD-KIND OF ACCOUNT. MOVE 4711 TO ACCOUNT-NO.
           MOVE "Office" TO ACCOUNT-TITLE.
           WRITE ACCOUNT.
           MOVE SPACES TO BOOKING.
           MOVE "B" TO RECORD-KIND OF BOOKING. MOVE 4711 TO BOOKED-ON.
           MOVE -12.30 TO AMOUNT. MOVE "D" TO BOOKING-SIDE.
           MOVE "Paper" TO PURPOSE.
           WRITE BOOKING.
           MOVE 99.99 TO AMOUNT. MOVE "C" TO BOOKING-SIDE.
           MOVE "Refund of a printer" TO PURPOSE.
           WRITE BOOKING.
           MOVE SPACES TO ACCOUNT.
           MOVE "A" TO RECORD-KIND OF ACCOUNT. MOVE 4712 TO ACCOUNT-NO.
           MOVE "Travel" TO ACCOUNT-TITLE.
           WRITE ACCOUNT.
           CLOSE LEDGER.
