       IDENTIFICATION DIVISION.
       PROGRAM-ID. INVOICE.
       AUTHOR. J O'BRIEN.
       ENVIRONMENT DIVISION.
       CONFIGURATION SECTION.
       SPECIAL-NAMES.
           CURRENCY SIGN IS "F"
           DECIMAL-POINT IS COMMA.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT INVOICES ASSIGN TO "INV.DAT"
               ORGANIZATION IS SEQUENTIAL.
           SELECT PAYMENTS ASSIGN TO "PAY.DAT".
       DATA DIVISION.
       FILE SECTION.
       FD  INVOICES
           LABEL RECORDS ARE STANDARD
           RECORD CONTAINS 20 TO 400 CHARACTERS
           DATA RECORDS ARE INVOICE-HEAD INVOICE-LINE.
       01  INVOICE-HEAD.
           COPY "invdate" IN shared
               REPLACING ==:TAG:== BY ==HEAD==
                         LEADING ==OLD-== BY ==NEW-==
                         PIC-TEXT BY ==X(9)==.
           05  TOTAL                   PIC FFF.FF9,99CR.
      *sxml: when LINE-KIND = "L" or LINE-KIND OF INVOICE-LINE > 5,5
       01  INVOICE-LINE.
           05  LINE-KIND               PIC X.
           05  AMOUNT                  PIC 9(MAX-DIGITS),99.
           05  LINE-ITEM               OCCURS MAX-LINES TIMES.
               10  ITEM-TEXT           PIC X(8) VALUE ALL "*".
       FD  PAYMENTS.
           COPY PAYREC.
       SD  SORT-FILE.
       01  SORT-RECORD                 PIC X(80).
       WORKING-STORAGE SECTION.
       78  MAX-LINES                   VALUE 4 + 1 * 2.
       01  MAX-DIGITS CONSTANT AS 5.
           EXEC SQL BEGIN DECLARE SECTION END-EXEC.
       01  HOST-ROW.
           05  ROW-ID                  PIC S9(9) COMP.
           EXEC SQL END DECLARE SECTION END-EXEC.
           EXEC SQL DECLARE T TABLE (A CHAR(3), B "X") END-EXEC
           EXEC SQL INCLUDE SQLCA END-EXEC.
       77  COUNTER                     PIC 9(3) COMP-X.
           COPY DFHAID.
       01  UNUSED-AREA PIC X(5.
       PROCEDURE DIVISION.
       MAIN.
           MOVE 'UNCLOSED TO NOTHING.
           STOP RUN.
