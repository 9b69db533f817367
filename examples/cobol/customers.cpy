      *> A customer of the master file.
       01  CUSTOMER.
           05  CUST-ID             PIC 9(5).
           05  CUST-NAME           PIC X(15).
           05  BALANCE             PIC S9(7)V99 COMP-3.
