           05  COPIED-WRONG            PIC 9(39).
           COPY "mistakes-2".
