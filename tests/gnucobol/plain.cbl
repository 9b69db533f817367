      *> What plain files can do that documents cannot, or do otherwise.
      *> Argument: "beside" keeps a document open meanwhile, "hold" and
      *> "try" are for two programs at a time, "fail" ends at an error.
       IDENTIFICATION DIVISION.
       PROGRAM-ID. PLAIN.
       ENVIRONMENT DIVISION.
       INPUT-OUTPUT SECTION.
       FILE-CONTROL.
           SELECT BESIDE ASSIGN TO "BESIDE" FILE STATUS IS S.
           SELECT PAGES ASSIGN TO "pages.txt" LINE SEQUENTIAL
               FILE STATUS IS S.
           SELECT ITEMS ASSIGN TO "items.dat" FILE STATUS IS S.
           SELECT LOCKED ASSIGN TO "items.dat" FILE STATUS IS S
               LOCK MODE IS EXCLUSIVE.
           SELECT PLACES ASSIGN TO "places.dat" FILE STATUS IS S
               ORGANIZATION IS RELATIVE ACCESS MODE IS DYNAMIC
               RELATIVE KEY IS PLACE.
           SELECT FULL ASSIGN TO "/dev/full" FILE STATUS IS S.
           SELECT OPTIONAL GONE ASSIGN TO "gone.dat" FILE STATUS IS S.
           SELECT NOWHERE ASSIGN TO "nowhere.dat".
       DATA DIVISION.
       FILE SECTION.
       FD  BESIDE.
       01  BESIDE-RECORD.
           05  BESIDE-TEXT         PIC X(5).
       FD  PAGES LINAGE IS 5 LINES WITH FOOTING AT 4
           LINES AT TOP 1 LINES AT BOTTOM 1.
       01  PAGE-LINE               PIC X(20).
       FD  ITEMS RECORD IS VARYING FROM 4 TO 12 DEPENDING ON LONG.
       01  ITEM                    PIC X(12).
       FD  LOCKED.
       01  LOCKED-ITEM             PIC X(12).
       FD  PLACES.
       01  PLACE-TEXT              PIC X(6).
       FD  FULL.
       01  FULL-RECORD             PIC X(60000).
       FD  GONE.
       01  GONE-RECORD             PIC X(6).
       FD  NOWHERE.
       01  NOWHERE-RECORD          PIC X(6).
       WORKING-STORAGE SECTION.
       01  S                       PIC XX.
       01  HOW                     PIC X(8).
       01  LONG                    PIC 9(3).
       01  PLACE                   PIC 9(3).
       01  I                       PIC 9(3).
       PROCEDURE DIVISION.
           ACCEPT HOW FROM ARGUMENT-VALUE.
           EVALUATE HOW
               WHEN "hold"
                   OPEN EXTEND LOCKED DISPLAY "hold " S
                   CALL "C$SLEEP" USING 30
               WHEN "try"
                   OPEN INPUT LOCKED DISPLAY "try " S
                   OPEN EXTEND LOCKED DISPLAY "try " S
                   STOP RUN
               WHEN "fail"
                   OPEN INPUT NOWHERE
           END-EVALUATE.
           IF HOW = "beside" OPEN OUTPUT BESIDE.
           PERFORM WRITE-PAGES.
           PERFORM WRITE-ITEMS.
           PERFORM READ-ITEMS.
           PERFORM WRITE-PLACES.
           OPEN OUTPUT FULL. DISPLAY "full " S.
           PERFORM 2 TIMES
               WRITE FULL-RECORD DISPLAY "full " S
           END-PERFORM.
           CLOSE FULL. DISPLAY "full " S.
           OPEN INPUT GONE. DISPLAY "gone " S.
           READ GONE. DISPLAY "gone " S.
           CLOSE GONE. DISPLAY "gone " S.
           DELETE FILE PLACES. DISPLAY "delete " S.
           IF HOW = "beside" CLOSE BESIDE.
           MOVE 7 TO RETURN-CODE.
           STOP RUN.

       WRITE-PAGES.
           OPEN OUTPUT PAGES. DISPLAY "pages " S.
           PERFORM VARYING I FROM 1 BY 1 UNTIL I > 9
               MOVE I TO PAGE-LINE
               WRITE PAGE-LINE AFTER ADVANCING 1 LINE
                   AT END-OF-PAGE DISPLAY "end of page " I
                   NOT AT END-OF-PAGE
                       DISPLAY "line " S " " LINAGE-COUNTER
               END-WRITE
           END-PERFORM.
           WRITE PAGE-LINE BEFORE ADVANCING PAGE. DISPLAY "page " S.
           CLOSE PAGES. DISPLAY "pages " S.

       WRITE-ITEMS.
           OPEN OUTPUT ITEMS. DISPLAY "items " S.
           PERFORM VARYING LONG FROM 3 BY 4 UNTIL LONG > 13
               MOVE ALL "ab" TO ITEM
               WRITE ITEM DISPLAY "write " S
           END-PERFORM.
           CLOSE ITEMS REEL. DISPLAY "reel " S.
           CLOSE ITEMS WITH NO REWIND. DISPLAY "no rewind " S.
           OPEN EXTEND ITEMS. MOVE 5 TO LONG. MOVE "extra" TO ITEM.
           WRITE ITEM. DISPLAY "extend " S.
           CLOSE ITEMS.

       READ-ITEMS.
           OPEN I-O ITEMS. DISPLAY "i-o " S.
           READ ITEMS. MOVE "REWRITTEN" TO ITEM.
           REWRITE ITEM. DISPLAY "rewrite " S.
           READ ITEMS. DISPLAY "read " S LONG ITEM.
           CLOSE ITEMS.
           OPEN INPUT ITEMS.
           PERFORM UNTIL S NOT = "00"
               READ ITEMS DISPLAY "read " S " " LONG " " ITEM
           END-PERFORM.
           OPEN INPUT ITEMS. DISPLAY "again " S.
           CLOSE ITEMS WITH LOCK. DISPLAY "lock " S.
           OPEN INPUT ITEMS. DISPLAY "locked " S.
           CLOSE ITEMS. DISPLAY "closed " S.

       WRITE-PLACES.
           OPEN OUTPUT PLACES. DISPLAY "places " S.
           PERFORM VARYING PLACE FROM 1 BY 2 UNTIL PLACE > 5
               MOVE PLACE TO PLACE-TEXT
               WRITE PLACE-TEXT DISPLAY "place " S
           END-PERFORM.
           CLOSE PLACES.
           OPEN I-O PLACES.
           MOVE 2 TO PLACE. READ PLACES. DISPLAY "place 2 " S.
           START PLACES KEY > PLACE. DISPLAY "start " S.
           READ PLACES NEXT. DISPLAY "next " S " " PLACE-TEXT.
           DELETE PLACES. DISPLAY "delete " S.
           MOVE 3 TO PLACE. READ PLACES. DISPLAY "place 3 " S.
           UNLOCK PLACES. DISPLAY "unlock " S.
           CLOSE PLACES.
