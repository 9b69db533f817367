      *> Turns a ledger of accounts and bookings into a list of bookings
      *> in which each has its account's title.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. CONVERT-LEDGER.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT LEDGER ASSIGN TO "LEDGER".
           SELECT OPTIONAL JOURNAL ASSIGN TO "JOURNAL"
               FILE STATUS IS JOURNAL-STATUS.
       DATA DIVISION.
       FILE SECTION.
       FD  LEDGER.
           COPY "ledger.cpy".
       FD  JOURNAL.
       01  JOURNAL-LINE.
           05  TITLE               PIC X(12).
           05  SIDE                PIC X(6).
           05  SUM-BOOKED          PIC S9(5)V99 SIGN LEADING SEPARATE.
           05  REMARK              PIC X(20).
       WORKING-STORAGE SECTION.
       01  JOURNAL-STATUS          PIC XX.
       01  CURRENT-TITLE           PIC X(12) VALUE "none".
       01  LEDGER-END              PIC X VALUE "N".
           88  IS-END              VALUE "Y".
       01  LINE-COPY               PIC X(46).
       PROCEDURE DIVISION.
       MAIN-LINE.
           OPEN INPUT LEDGER OUTPUT JOURNAL.
           PERFORM UNTIL IS-END
               READ LEDGER
                   AT END SET IS-END TO TRUE
                   NOT AT END PERFORM CONVERT-RECORD
               END-READ
           END-PERFORM.
           CLOSE LEDGER JOURNAL.
           OPEN INPUT JOURNAL.
           PERFORM UNTIL JOURNAL-STATUS NOT = "00"
               READ JOURNAL INTO LINE-COPY
                   NOT AT END DISPLAY "[" LINE-COPY "]"
               END-READ
           END-PERFORM.
           DISPLAY "status " JOURNAL-STATUS.
           CLOSE JOURNAL.
           STOP RUN.

       CONVERT-RECORD.
           IF IS-ACCOUNT
               DISPLAY "account " ACCOUNT-NO " " ACCOUNT-TITLE
               MOVE ACCOUNT-TITLE TO CURRENT-TITLE
           ELSE
               MOVE CURRENT-TITLE TO TITLE
               MOVE AMOUNT TO SUM-BOOKED
               MOVE PURPOSE TO REMARK
               IF IS-DEBIT MOVE "debit" TO SIDE
               ELSE MOVE "credit" TO SIDE
               END-IF
               WRITE JOURNAL-LINE
           END-IF.
