      *> The ledger: each account is followed by the bookings on it.
      *> sxml: when IS-ACCOUNT
       01  ACCOUNT.
           05  RECORD-KIND             PIC X.
               88  IS-ACCOUNT          VALUE "A".
               88  IS-BOOKING          VALUE "B" "R".
           05  ACCOUNT-NUMBER          PIC 9(8).
           05  HOLDER                  PIC X(30).
           05  OPENED-ON               PIC 9(8).
           05  OPENING-BALANCE         PIC S9(9)V99 COMP-3.
           05  OVERDRAFT-ALLOWED       PIC X.
           05  FILLER                  PIC X(4).
      *> sxml: when IS-BOOKING
       01  BOOKING.
           05  BOOKING-KIND            PIC X.
               88  IS-REVERSAL         VALUE "R".
           05  BOOKING-ACCOUNT         PIC 9(8).
           05  SEQUENCE-NUMBER         PIC 9(4) COMP.
           05  BOOKED-ON               PIC 9(8).
           05  AMOUNT                  PIC S9(7)V99.
           05  PURPOSE                 PIC X(30).
