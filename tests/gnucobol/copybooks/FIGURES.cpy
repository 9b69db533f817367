       01  :T:-RECORD.
      *> sxml: name big
           05  :T:-BINARY          PIC S9(6) BINARY.
           05  :T:-SMALL           PIC 99 BINARY.
           05  :T:-SIGNED          PIC S9(3).
      *> sxml: hide
           05  :T:-HIDDEN          PIC X(2).
           05  :T:-NATIVE          PIC S9(3) COMP-5.
           05  :T:-PACKED          PIC S9(3)V99 COMP-3.
           05  :T:-TEXT            PIC X(3).
