      *> Records of varying length, several layouts, two files at once,
      *> one of them opened by a subprogram that stops the run.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. LENGTHS.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT TABLES ASSIGN TO "TABLES".
           SELECT KINDS ASSIGN TO "KINDS".
           SELECT TEXTS ASSIGN TO "VARIED".
           SELECT PARTS ASSIGN TO "PARTS" FILE STATUS IS S.
           SELECT LINES-OF ASSIGN TO "LINES"
               ORGANIZATION IS LINE SEQUENTIAL.
       DATA DIVISION.
       FILE SECTION.
       FD  TABLES RECORD VARYING 4 TO 20 DEPENDING ON TABLE-LENGTH.
       01  TABLE-RECORD.
           05  ENTRY-COUNT         PIC 9(4).
           05  ENTRIES             PIC X(4) OCCURS 0 TO 4
                                   DEPENDING ON ENTRY-COUNT.
       FD  KINDS RECORD VARYING DEPENDING ON KIND-LENGTH.
      *> sxml: when IS-SHORT
       01  SHORT-RECORD.
           05  KIND                PIC X.
               88  IS-SHORT        VALUE "S".
           05  SHORT-NUMBER        PIC S9(3) COMP-3.
      *> sxml: when IS-LONG
       01  LONG-RECORD.
           05  KIND                PIC X.
               88  IS-LONG         VALUE "L".
           05  LONG-TEXT           PIC X(9).
           05  LONG-NUMBER         PIC 9(3).
       FD  TEXTS RECORD VARYING 1 TO 40 DEPENDING ON TEXT-LENGTH.
       01  TEXT-RECORD             PIC X(40).
       FD  PARTS RECORD VARYING 4 TO 34 DEPENDING ON PART-LENGTH.
       01  PART-RECORD.
           05  PART-NO             PIC 9(4).
           05  PART-NAME           PIC X(10).
           05  PART-NOTE           PIC X(20).
       FD  LINES-OF RECORD VARYING 0 TO 30 DEPENDING ON LINE-LENGTH.
       01  LINE-RECORD.
           05  LINE-START          PIC X(10).
           05  LINE-REST           PIC X(20).
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       01  TEXT-LENGTH             PIC 99.
       01  PART-LENGTH             PIC 99.
       01  LINE-LENGTH             PIC 99.
       01  TEXT-COPY               PIC X(45).
       01  TABLE-LENGTH            PIC 99.
       01  KIND-LENGTH             PIC 99.
       01  N                       PIC 9.
       PROCEDURE DIVISION.
           OPEN OUTPUT TABLES KINDS.
           PERFORM VARYING N FROM 1 BY 1 UNTIL N > 3
               MOVE 4 TO ENTRY-COUNT
               MOVE ALL "abc" TO TABLE-RECORD (5:16)
               MOVE N TO ENTRY-COUNT
               COMPUTE TABLE-LENGTH = 4 + 4 * N
               WRITE TABLE-RECORD
               MOVE 3 TO KIND-LENGTH
               MOVE "S" TO KIND OF SHORT-RECORD
               COMPUTE SHORT-NUMBER = 0 - N
               WRITE SHORT-RECORD
               MOVE 13 TO KIND-LENGTH
               MOVE "L" TO KIND OF LONG-RECORD
               MOVE "text" TO LONG-TEXT
               MOVE N TO LONG-NUMBER
               WRITE LONG-RECORD
           END-PERFORM.
           CLOSE TABLES KINDS.
           PERFORM 2 TIMES
               OPEN INPUT TABLES KINDS
               PERFORM 3 TIMES
                   READ TABLES
                   DISPLAY TABLE-LENGTH " " TABLE-RECORD "|"
                   READ KINDS
                   DISPLAY KIND-LENGTH " " SHORT-NUMBER
                   READ KINDS
                   DISPLAY KIND-LENGTH " " LONG-RECORD
               END-PERFORM
               CLOSE TABLES KINDS
           END-PERFORM.
           PERFORM VARYING-TEXTS.
           PERFORM VARYING-PARTS.
           PERFORM VARYING-LINES.
           OPEN OUTPUT TABLES.
           MOVE 0 TO ENTRY-COUNT.
           MOVE 4 TO TABLE-LENGTH.
           WRITE TABLE-RECORD.
           CALL "LEAVE".

      *> A document has a field whole or not at all.
       VARYING-TEXTS.
           OPEN OUTPUT TEXTS.
           MOVE ALL "x" TO TEXT-RECORD.
           MOVE 40 TO TEXT-LENGTH. WRITE TEXT-RECORD.
           MOVE "hello world" TO TEXT-RECORD.
           MOVE 11 TO TEXT-LENGTH. WRITE TEXT-RECORD.
           MOVE 1 TO TEXT-LENGTH. WRITE TEXT-RECORD.
           CLOSE TEXTS.
           OPEN INPUT TEXTS.
           PERFORM 3 TIMES
               READ TEXTS INTO TEXT-COPY
               DISPLAY TEXT-LENGTH " " TEXT-COPY "|"
           END-PERFORM.
           CLOSE TEXTS.

       VARYING-PARTS.
           OPEN OUTPUT PARTS.
           MOVE 12 TO PART-NO.
           MOVE "bolt" TO PART-NAME.
           MOVE "to be had in the gol" TO PART-NOTE.
           MOVE 34 TO PART-LENGTH. WRITE PART-RECORD.
           MOVE 14 TO PART-LENGTH. WRITE PART-RECORD.
           MOVE 4 TO PART-LENGTH. WRITE PART-RECORD.
           MOVE 0 TO PART-LENGTH. WRITE PART-RECORD.
           DISPLAY "too short " S.
           CLOSE PARTS.
           OPEN INPUT PARTS.
           PERFORM 3 TIMES
               READ PARTS
               DISPLAY PART-LENGTH " " PART-RECORD (1:PART-LENGTH) "|"
           END-PERFORM.
           CLOSE PARTS.

       VARYING-LINES.
           OPEN OUTPUT LINES-OF.
           MOVE "a line" TO LINE-RECORD.
           MOVE 6 TO LINE-LENGTH. WRITE LINE-RECORD.
           MOVE 30 TO LINE-LENGTH. WRITE LINE-RECORD.
           MOVE SPACES TO LINE-RECORD.
           MOVE 0 TO LINE-LENGTH. WRITE LINE-RECORD.
           CLOSE LINES-OF.
           OPEN INPUT LINES-OF.
           PERFORM 3 TIMES
               READ LINES-OF
               DISPLAY LINE-LENGTH " " LINE-RECORD "|"
           END-PERFORM.
           CLOSE LINES-OF.
