           05  DEEP-WRONG              PIC 9V9V.
           COPY BROKEN.
