*> A free-format copybook without level 01.
05 order-id pic 9(8) comp-5.
05 record pic x(4).
05 Date.
  10 year pic 9(4). 10 month pic 99.
  *> sxml: name dayOfMonth
  10 day-of-month pic 99.
05 value pic 9(3).
05 pic x(3).
05 index pic 9.
05 pointer usage pointer.
05 comp-2.
05 title pic n(4) usage national.
*> sxml: hex
05 flags pic x(2).
*> sxml: hide
05 filler pic x.
garbage after the end