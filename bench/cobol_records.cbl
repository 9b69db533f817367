      *> Writes and reads records of a usual shape.
      *> Arguments: write or read, number of records.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. COBOL-RECORDS.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT MASTER ASSIGN TO "MASTER" FILE STATUS IS S.
       DATA DIVISION.
       FILE SECTION.
       FD  MASTER.
       01  CUSTOMER.
           05  CUST-ID             PIC 9(8).
           05  CUST-NAME           PIC X(20).
           05  BALANCE             PIC S9(7)V99 COMP-3.
           05  VISITS              PIC 9(4) COMP.
           05  PHONE               PIC X(8) OCCURS 2.
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       01  WHAT                    PIC X(5).
       01  WANTED                  PIC 9(8).
       01  N                       PIC 9(8) COMP-5 VALUE 0.
       01  CHECKSUM                PIC 9(18) VALUE 0.
       PROCEDURE DIVISION.
           ACCEPT WHAT FROM ARGUMENT-VALUE.
           ACCEPT WANTED FROM ARGUMENT-VALUE.
           IF WHAT = "write"
               OPEN OUTPUT MASTER
               PERFORM VARYING N FROM 1 BY 1 UNTIL N > WANTED
                   MOVE N TO CUST-ID
                   MOVE "Margaret Miller" TO CUST-NAME
                   COMPUTE BALANCE = N / 8
                   MOVE 42 TO VISITS
                   MOVE "5551234" TO PHONE (1)
                   MOVE SPACES TO PHONE (2)
                   WRITE CUSTOMER
                   ADD CUST-ID TO CHECKSUM
               END-PERFORM
           ELSE
               OPEN INPUT MASTER
               READ MASTER
               PERFORM UNTIL S NOT = "00"
                   ADD CUST-ID TO CHECKSUM
                   READ MASTER
               END-PERFORM
           END-IF.
           CLOSE MASTER.
           DISPLAY CHECKSUM.
           STOP RUN.
