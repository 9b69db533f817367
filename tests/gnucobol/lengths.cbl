      *> Records of varying length, several layouts, two files at once,
      *> one of them opened by a subprogram that stops the run.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. LENGTHS.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT TABLES ASSIGN TO "TABLES".
           SELECT KINDS ASSIGN TO "KINDS".
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
       WORKING-STORAGE SECTION.
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
           OPEN OUTPUT TABLES.
           MOVE 0 TO ENTRY-COUNT.
           MOVE 4 TO TABLE-LENGTH.
           WRITE TABLE-RECORD.
           CALL "LEAVE".
