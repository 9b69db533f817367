      *> Writes a file of 1,200 orders.
      *>     write_orders FILE
       IDENTIFICATION DIVISION.
       PROGRAM-ID. WRITE-ORDERS.

       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT ORDERS ASSIGN TO FILE-NAME
               ORGANIZATION IS SEQUENTIAL
               FILE STATUS IS ORDERS-STATUS.

       DATA DIVISION.
       FILE SECTION.
       FD  ORDERS.
       COPY "orders.cpy".

       WORKING-STORAGE SECTION.
       01  FILE-NAME                   PIC X(255).
       01  ORDERS-STATUS               PIC XX.
       01  ORDER-COUNT                 PIC 9(6) VALUE 1200.
       01  N                           PIC 9(6).
       01  L                           PIC 9.
       01  LINES-USED                  PIC 9.
       01  SEED                        PIC 9(9) COMP-5 VALUE 20261122.
       01  DRAWN                       PIC 9(9) COMP-5.
       01  CHOICE                      PIC 9(9) COMP-5.
       01  TOTAL                       PIC S9(9)V99.

       01  CUSTOMER-TABLE.
           05  FILLER PIC X(30) VALUE "Smith & Sons".
           05  FILLER PIC X(26) VALUE "12 Market Street".
           05  FILLER PIC X(8)  VALUE "LS1 4DY".
           05  FILLER PIC X(18) VALUE "Leeds".
           05  FILLER PIC X(30) VALUE "Miller's Garden Centre".
           05  FILLER PIC X(26) VALUE """The Old Mill""".
           05  FILLER PIC X(8)  VALUE "BS8 2XN".
           05  FILLER PIC X(18) VALUE "Bristol".
           05  FILLER PIC X(30) VALUE "Nord <Trading> A/S".
           05  FILLER PIC X(26) VALUE "Havnegade 44".
           05  FILLER PIC X(8)  VALUE "1058".
           05  FILLER PIC X(18) VALUE "Copenhagen".
           05  FILLER PIC X(30) VALUE "Vermeer Bloemen".
           05  FILLER PIC X(26) VALUE "Keizersgracht 9".
           05  FILLER PIC X(8)  VALUE "1015 CJ".
           05  FILLER PIC X(18) VALUE "Amsterdam".
           05  FILLER PIC X(30) VALUE "Okafor Hardware".
           05  FILLER PIC X(26) VALUE SPACES.
           05  FILLER PIC X(8)  VALUE "EH1 1AA".
           05  FILLER PIC X(18) VALUE "Edinburgh".
       01  CUSTOMERS REDEFINES CUSTOMER-TABLE.
           05  KNOWN-CUSTOMER OCCURS 5 TIMES.
               10  KNOWN-NAME          PIC X(30).
               10  KNOWN-STREET        PIC X(26).
               10  KNOWN-POSTCODE      PIC X(8).
               10  KNOWN-CITY          PIC X(18).

       01  ARTICLE-TABLE.
           05  FILLER PIC X(20) VALUE "Nuts & bolts, 5 mm".
           05  FILLER PIC X(20) VALUE "Spade 3/4"" handle".
           05  FILLER PIC X(20) VALUE "Rope, 10 m".
           05  FILLER PIC X(20) VALUE "Lamp <indoor>".
           05  FILLER PIC X(20) VALUE "Paint, white".
           05  FILLER PIC X(20) VALUE "Watering can".
           05  FILLER PIC X(20) VALUE "Ladder 2.5 m".
       01  ARTICLES REDEFINES ARTICLE-TABLE.
           05  KNOWN-ARTICLE           PIC X(20) OCCURS 7 TIMES.

       PROCEDURE DIVISION.
       MAIN-LINE.
           ACCEPT FILE-NAME FROM ARGUMENT-VALUE
           OPEN OUTPUT ORDERS
           IF ORDERS-STATUS NOT = "00"
               DISPLAY "write_orders: cannot open the file, status "
                   ORDERS-STATUS UPON SYSERR
               MOVE 1 TO RETURN-CODE
               STOP RUN
           END-IF
           PERFORM VARYING N FROM 1 BY 1 UNTIL N > ORDER-COUNT
               PERFORM MAKE-ORDER
               WRITE ORDER-RECORD
           END-PERFORM
           CLOSE ORDERS
           STOP RUN.

       MAKE-ORDER.
           INITIALIZE ORDER-RECORD
           MOVE N TO ORDER-NUMBER
           PERFORM DRAW
           COMPUTE ORDER-YEAR = 2020 + FUNCTION MOD(DRAWN, 7)
           PERFORM DRAW
           COMPUTE ORDER-MONTH = 1 + FUNCTION MOD(DRAWN, 12)
           PERFORM DRAW
           COMPUTE ORDER-DAY = 1 + FUNCTION MOD(DRAWN, 28)
           PERFORM MAKE-CUSTOMER
           MOVE ZERO TO TOTAL
           PERFORM DRAW
           COMPUTE LINES-USED = 1 + FUNCTION MOD(DRAWN, 4)
           PERFORM VARYING L FROM 1 BY 1 UNTIL L > LINES-USED
               PERFORM MAKE-LINE
           END-PERFORM
           COMPUTE STOCK-CHANGE = FUNCTION MOD(DRAWN, 4001) - 2000
           COMPUTE DISCOUNT-RATE = FUNCTION MOD(DRAWN, 250) / 1000
           IF FUNCTION MOD(N, 9) = 0
               COMPUTE DISCOUNT-RATE = 0 - DISCOUNT-RATE
           END-IF
           MOVE TOTAL TO BALANCE
           EVALUATE FUNCTION MOD(N, 4)
               WHEN 0  MOVE "Deliver to the back door" TO REMARK
               WHEN 1  MOVE "Gift: ""with love""" TO REMARK
               WHEN 2  MOVE "Attn. Mr. & Mrs. Lindström" TO REMARK
           END-EVALUATE.

       MAKE-CUSTOMER.
           PERFORM DRAW
           COMPUTE CHOICE = 1 + FUNCTION MOD(DRAWN, 6)
           COMPUTE CUSTOMER-ID = 10000000 + CHOICE * 1117
           IF CHOICE = 6
               MOVE "Café Zoë" TO CUSTOMER-NAME
               MOVE "Rue de la Paix 7 bis" TO STREET
               MOVE "75002" TO POSTCODE
               MOVE "Paris" TO CITY
           ELSE
               MOVE KNOWN-NAME(CHOICE) TO CUSTOMER-NAME
               MOVE KNOWN-STREET(CHOICE) TO STREET
               MOVE KNOWN-POSTCODE(CHOICE) TO POSTCODE
               MOVE KNOWN-CITY(CHOICE) TO CITY
           END-IF
           COMPUTE CREDIT-LIMIT = CHOICE * 2500 - 4000.5
           MOVE "+44 113 496 0123" TO PHONE(1)
           IF FUNCTION MOD(N, 3) = 0
               MOVE "+44 117 496 0456" TO PHONE(2)
           END-IF.

       MAKE-LINE.
           PERFORM DRAW
           COMPUTE CHOICE = 1 + FUNCTION MOD(DRAWN, 7)
           MOVE KNOWN-ARTICLE(CHOICE) TO ARTICLE(L)
           PERFORM DRAW
           COMPUTE QUANTITY(L) = 1 + FUNCTION MOD(DRAWN, 120)
      *>   Some goods come back.
           IF FUNCTION MOD(N, 7) = 0
               COMPUTE QUANTITY(L) = 0 - QUANTITY(L)
           END-IF
           COMPUTE UNIT-PRICE(L) = 0.05 + FUNCTION MOD(DRAWN, 9973) / 100
           COMPUTE WAREHOUSE-SHELF(L, 1) = FUNCTION MOD(DRAWN, 100)
           COMPUTE WAREHOUSE-SHELF(L, 2) = FUNCTION MOD(DRAWN, 40)
           COMPUTE TOTAL = TOTAL + QUANTITY(L) * UNIT-PRICE(L).

      *> A pseudo-random number, the same in every run.
       DRAW.
           COMPUTE SEED = FUNCTION MOD(SEED * 16807, 2147483647)
           COMPUTE DRAWN = SEED / 1000.
