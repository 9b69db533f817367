*> free format inside a fixed program
01 payment-record.
   05 payment-id pic 9(9).
   05 payment-amount pic s9(7)v9(2) sign is leading separate character.
   05 payment-ratio pic svp(3)9(2).
   05 payment-scaled pic 9(2)p(3).
