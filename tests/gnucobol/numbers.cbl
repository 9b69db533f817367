      *> Numbers of every usage, as the options of the compiler lay them out.
      *> Argument: write or read.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. NUMBERS.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT FIGURES ASSIGN TO "FIGURES" FILE STATUS IS S.
       DATA DIVISION.
       FILE SECTION.
       FD  FIGURES.
           COPY FIGURES REPLACING ==:T:== BY ==FIG==.
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       01  WHAT                    PIC X(5).
       PROCEDURE DIVISION.
           ACCEPT WHAT FROM ARGUMENT-VALUE.
           IF WHAT = "write"
               OPEN OUTPUT FIGURES
               MOVE -12345 TO FIG-BINARY
               MOVE 12 TO FIG-SMALL
               MOVE -123 TO FIG-SIGNED FIG-NATIVE
               MOVE -1.5 TO FIG-PACKED
               MOVE "end" TO FIG-TEXT
               WRITE FIG-RECORD
           ELSE
               OPEN INPUT FIGURES
               READ FIGURES
               DISPLAY S " " FIG-BINARY " " FIG-SMALL " " FIG-SIGNED
                   " " FIG-NATIVE " " FIG-PACKED " " FIG-TEXT
           END-IF.
           CLOSE FIGURES.
           STOP RUN.
