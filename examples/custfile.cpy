       01  CUSTOMER.
           05  CUST-ID              PIC 9(5).
           05  CUST-NAME            PIC X(10).
           05  BALANCE              PIC S9(5)V99.
           05  ADDR.
               10  CITY             PIC X(8).
               10  ZIP              PIC X(5).
           05  PHONE                PIC X(4) OCCURS 3.
