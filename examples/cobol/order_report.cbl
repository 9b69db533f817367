      *> Prints the orders with their lines and totals.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. ORDER-REPORT.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT ORDERS ASSIGN TO "ORDERS" FILE STATUS IS STATUS-CODE.
       DATA DIVISION.
       FILE SECTION.
       FD  ORDERS.
           COPY "orders.cpy".
       WORKING-STORAGE SECTION.
       01  STATUS-CODE             PIC XX.
       01  I                       PIC 99.
       01  LINE-TOTAL              PIC 9(7)V99.
       01  ORDER-TOTAL             PIC 9(7)V99.
       01  ALL-TOTAL               PIC 9(7)V99 VALUE 0.
       01  SHOWN-AMOUNT            PIC Z,ZZZ,ZZ9.99.
       01  SHOWN-DISCOUNT          PIC -ZZ9.9.
       PROCEDURE DIVISION.
       MAIN-LINE.
           OPEN INPUT ORDERS.
           IF STATUS-CODE NOT = "00"
               DISPLAY "The orders cannot be read: " STATUS-CODE
               STOP RUN
           END-IF.
           READ ORDERS.
           PERFORM UNTIL STATUS-CODE NOT = "00"
               PERFORM PRINT-ORDER
               READ ORDERS
           END-PERFORM.
           CLOSE ORDERS.
           MOVE ALL-TOTAL TO SHOWN-AMOUNT.
           DISPLAY "All orders:                        " SHOWN-AMOUNT.
           STOP RUN.

       PRINT-ORDER.
           MOVE ORDER-DISCOUNT TO SHOWN-DISCOUNT.
           DISPLAY "Order " ORDER-NO " of " ORDER-YEAR "-" ORDER-MONTH
               "-" ORDER-DAY " for " ORDER-CUSTOMER
               " discount " SHOWN-DISCOUNT "%".
           MOVE 0 TO ORDER-TOTAL.
           PERFORM VARYING I FROM 1 BY 1 UNTIL I > LINE-COUNT
               COMPUTE LINE-TOTAL = QUANTITY (I) * UNIT-PRICE (I)
               ADD LINE-TOTAL TO ORDER-TOTAL
               MOVE LINE-TOTAL TO SHOWN-AMOUNT
               DISPLAY "  " ARTICLE (I) " " QUANTITY (I) " x "
                   UNIT-PRICE (I) " " SHOWN-AMOUNT
                   " [" SHADE (I 1) "|" SHADE (I 2) "]"
           END-PERFORM.
           COMPUTE ORDER-TOTAL ROUNDED =
               ORDER-TOTAL * (100 + ORDER-DISCOUNT) / 100.
           ADD ORDER-TOTAL TO ALL-TOTAL.
           MOVE ORDER-TOTAL TO SHOWN-AMOUNT.
           DISPLAY "  to pay:                          " SHOWN-AMOUNT.
