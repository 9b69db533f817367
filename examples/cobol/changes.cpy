      *> A change to the master file.
       01  CHANGE-RECORD.
           05  CHANGE-ID           PIC 9(5).
           05  CHANGE-KIND         PIC X.
               88  IS-ADDITION     VALUE "A".
               88  IS-PAYMENT      VALUE "P".
               88  IS-DELETION     VALUE "D".
           05  CHANGE-NAME         PIC X(15).
           05  CHANGE-AMOUNT       PIC S9(7)V99.
