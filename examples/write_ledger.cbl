      *> Writes a ledger of 200 accounts with their 1,000 bookings.
      *>     write_ledger FILE
       IDENTIFICATION DIVISION.
       PROGRAM-ID. WRITE-LEDGER.

       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT LEDGER ASSIGN TO FILE-NAME
               ORGANIZATION IS SEQUENTIAL
               FILE STATUS IS LEDGER-STATUS.

       DATA DIVISION.
       FILE SECTION.
       FD  LEDGER.
       COPY "ledger.cpy".

       WORKING-STORAGE SECTION.
       01  FILE-NAME                   PIC X(255).
       01  LEDGER-STATUS               PIC XX.
       01  ACCOUNT-COUNT               PIC 9(4) VALUE 200.
       01  BOOKINGS-EACH               PIC 9(4) VALUE 5.
       01  A                           PIC 9(4).
       01  B                           PIC 9(4).
       01  SEED                        PIC 9(9) COMP-5 VALUE 7041776.

       PROCEDURE DIVISION.
       MAIN-LINE.
           ACCEPT FILE-NAME FROM ARGUMENT-VALUE
           OPEN OUTPUT LEDGER
           IF LEDGER-STATUS NOT = "00"
               DISPLAY "write_ledger: cannot open the file, status "
                   LEDGER-STATUS UPON SYSERR
               MOVE 1 TO RETURN-CODE
               STOP RUN
           END-IF
           PERFORM VARYING A FROM 1 BY 1 UNTIL A > ACCOUNT-COUNT
               PERFORM WRITE-ACCOUNT
               PERFORM VARYING B FROM 1 BY 1 UNTIL B > BOOKINGS-EACH
                   PERFORM WRITE-BOOKING
               END-PERFORM
           END-PERFORM
           CLOSE LEDGER
           STOP RUN.

       WRITE-ACCOUNT.
           INITIALIZE ACCOUNT
           SET IS-ACCOUNT TO TRUE
           COMPUTE ACCOUNT-NUMBER = 40000000 + A * 37
           EVALUATE FUNCTION MOD(A, 4)
               WHEN 0  MOVE "Brown, Taylor & Co." TO HOLDER
               WHEN 1  MOVE "Françoise Müller" TO HOLDER
               WHEN 2  MOVE "O'Neill Ltd." TO HOLDER
               WHEN 3  MOVE SPACES TO HOLDER
           END-EVALUATE
           COMPUTE OPENED-ON = 20010101 + FUNCTION MOD(A, 12) * 100
           PERFORM DRAW
           COMPUTE OPENING-BALANCE =
               (FUNCTION MOD(SEED, 2000000) - 900000) / 100
           IF FUNCTION MOD(A, 3) = 0
               MOVE "Y" TO OVERDRAFT-ALLOWED
           END-IF
           MOVE SPACES TO ACCOUNT(55:4)
           WRITE ACCOUNT.

       WRITE-BOOKING.
           COMPUTE BOOKING-ACCOUNT = 40000000 + A * 37
           MOVE "B" TO BOOKING-KIND
           MOVE B TO SEQUENCE-NUMBER
           COMPUTE BOOKED-ON = 20260100 + B * 100 + FUNCTION MOD(A, 28)
           PERFORM DRAW
           COMPUTE AMOUNT = (FUNCTION MOD(SEED, 500000) - 200000) / 100
           EVALUATE FUNCTION MOD(SEED, 5)
               WHEN 0  MOVE "Rent <flat 4>" TO PURPOSE
               WHEN 1  MOVE "Salary" TO PURPOSE
               WHEN 2  MOVE "Books & papers" TO PURPOSE
               WHEN 3  MOVE "Crème brûlée, 3 pcs." TO PURPOSE
               WHEN 4  MOVE SPACES TO PURPOSE
           END-EVALUATE
           IF B = BOOKINGS-EACH AND FUNCTION MOD(A, 10) = 0
               SET IS-REVERSAL TO TRUE
               COMPUTE AMOUNT = 0 - AMOUNT
           END-IF
           WRITE BOOKING.

      *> A pseudo-random number, the same in every run.
       DRAW.
           COMPUTE SEED = FUNCTION MOD(SEED * 16807, 2147483647).
