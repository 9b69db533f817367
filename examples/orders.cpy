      *> One order of the order desk, with up to four lines.
       01  ORDER-RECORD.
           05  ORDER-NUMBER            PIC 9(6).
           05  ORDER-DATE.
               10  ORDER-YEAR          PIC 9(4).
               10  ORDER-MONTH         PIC 9(2).
               10  ORDER-DAY           PIC 9(2).
           05  CUSTOMER.
               10  CUSTOMER-ID         PIC 9(8) COMP.
               10  CUSTOMER-NAME       PIC X(30).
               10  DELIVERY-ADDRESS.
                   15  STREET          PIC X(26).
                   15  POSTCODE        PIC X(8).
                   15  CITY            PIC X(18).
               10  CREDIT-LIMIT        PIC S9(7)V99 COMP-3.
               10  PHONE               PIC X(16) OCCURS 2 TIMES.
           05  ORDER-LINE OCCURS 4 TIMES.
               10  ARTICLE             PIC X(20).
               10  QUANTITY            PIC S9(5).
               10  UNIT-PRICE          PIC S9(5)V99 COMP-3.
               10  WAREHOUSE-SHELF     PIC 9(2) COMP OCCURS 2 TIMES.
           05  STOCK-CHANGE            PIC S9(9) COMP-5.
           05  DISCOUNT-RATE           PIC SV9(3).
           05  BALANCE                 PIC S9(7)V99
                                       SIGN IS TRAILING SEPARATE.
           05  REMARK                  PIC X(32).
