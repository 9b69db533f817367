      *> Accounts and what is booked on them.
      *> sxml: when IS-ACCOUNT
       01  ACCOUNT.
           05  RECORD-KIND         PIC X.
               88  IS-ACCOUNT      VALUE "A".
           05  ACCOUNT-NO          PIC 9(4).
           05  ACCOUNT-TITLE       PIC X(12).
      *> sxml: when IS-BOOKING
       01  BOOKING.
           05  RECORD-KIND         PIC X.
               88  IS-BOOKING      VALUE "B".
           05  BOOKED-ON           PIC 9(4).
           05  AMOUNT              PIC S9(5)V99 COMP-3.
           05  BOOKING-SIDE        PIC X.
               88  IS-DEBIT        VALUE "D".
               88  IS-CREDIT       VALUE "C".
           05  PURPOSE             PIC X(20).
