      *> Texts that a document cannot hold, and one that it can in spite
      *> of what other layouts make of the same bytes.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. TEXTS.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT NOTES ASSIGN TO "NOTES" FILE STATUS IS S.
       DATA DIVISION.
       FILE SECTION.
       FD  NOTES.
      *> sxml: when IS-NOTE
       01  NOTE.
           05  KIND                PIC X.
               88  IS-NOTE         VALUE "N".
           05  TEXT-OF             PIC X(6).
      *> sxml: when IS-SUM
       01  SUM-RECORD.
           05  KIND                PIC X.
               88  IS-SUM          VALUE "S".
           05  AMOUNT              PIC S9(9) COMP.
           05  FILLER              PIC X(2).
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       PROCEDURE DIVISION.
           OPEN OUTPUT NOTES. DISPLAY "open " S.
           MOVE "N" TO KIND OF NOTE.
           MOVE X"C3A4E282AC" TO TEXT-OF. PERFORM PUT.
           MOVE X"E46162" TO TEXT-OF. PERFORM PUT.
           MOVE X"6162636465C3" TO TEXT-OF. PERFORM PUT.
           MOVE X"EDA080" TO TEXT-OF. PERFORM PUT.
           MOVE X"EFBFBF" TO TEXT-OF. PERFORM PUT.
           MOVE X"610162" TO TEXT-OF. PERFORM PUT.
           MOVE X"610062" TO TEXT-OF. PERFORM PUT.
           MOVE LOW-VALUES TO TEXT-OF. PERFORM PUT.
           MOVE "S" TO KIND OF SUM-RECORD.
           MOVE -2 TO AMOUNT. PERFORM PUT.
           CLOSE NOTES. DISPLAY "close " S.
           STOP RUN.
       PUT.
           WRITE NOTE. DISPLAY "write " S.
