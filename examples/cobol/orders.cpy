      *> An order with its lines.
       01  ORDER-RECORD.
           05  ORDER-NO            PIC 9(6).
           05  ORDER-DATE.
               10  ORDER-YEAR      PIC 9(4).
               10  ORDER-MONTH     PIC 9(2).
               10  ORDER-DAY       PIC 9(2).
           05  ORDER-CUSTOMER      PIC X(20).
           05  ORDER-DISCOUNT      PIC S9(3)V9 COMP-3.
           05  LINE-COUNT          PIC 9(2) COMP.
           05  ORDER-LINE OCCURS 1 TO 5 DEPENDING ON LINE-COUNT.
               10  ARTICLE         PIC X(12).
               10  QUANTITY        PIC 9(4) COMP.
               10  UNIT-PRICE      PIC 9(5)V99.
               10  SHADE           PIC X(6) OCCURS 2.
