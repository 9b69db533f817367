      * ONE MISTAKE AFTER THE OTHER; EACH IS TOLD AND PARSING GOES ON.
       01  MISTAKES.
           05  NO-PERIOD               PIC X(3)
           05  TWICE                   PIC 9 PIC 99 OCCURS 2 OCCURS 3.
           05  ZERO-TIMES              PIC X OCCURS 0.
           05  FEWER                   PIC X OCCURS 5 TO 3
                                       DEPENDING ON TWICE.
           05  NO-DEPENDING            PIC X OCCURS 1 TO 3 TIMES.
           05  UNKNOWN-COUNT           PIC X OCCURS MAX-COUNT TIMES.
           05  ELEMENTARY              PIC X.
               10  SUBORDINATE         PIC X.
           05  OTHER REDEFINES TWICE   PIC X.
           05  GROUP-1.
               10  FIRST-ITEM          PIC X.
             08  WRONG-LEVEL           PIC X.
           50  NO-LEVEL                PIC X.
           05  2BAD-                   PIC X.
           05  :TAG:-NAME              PIC X(:LEN:).
           05  USAGE-OF COMP-9         PIC 9.
           05  MISSPELT                PCITURE X(5) VALUE "A".
           05  VALUELESS               PIC X VALUE.
           05  NO-SIGN                 PIC S9 SIGN SEPARATE.
           05  UNCLOSED                PIC X VALUE "ABC.
           05  KIND                    PIC X.
               88  KIND-A              "A".
               88  KIND-B              VALUE "A" THRU.
               88  KIND-C              VALUES X"4".
           COPY NOWHERE.
           COPY "broken.cpy".
      *sxml: hidden
      *sxml: when KIND-A OR
      *sxml: name 9th
      *sxml: when KIND = "A" "B"
           05  DIRECTED                PIC X. *> sxml: hex
      *sxml: hex
           88  KIND-D                  VALUE "D".
           05  LAST-ONE                PIC X
      *sxml: hide
               OCCURS 3.
      *sxml: name lonely
