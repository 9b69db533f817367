01 big external.
  02 u1 pic 9(4) comp.          02 u2 comp-1.           02 u3 usage is comp-2.
  02 u4 pic s9(18) packed-decimal.  02 u5 pic 9(5) computational-6.
  02 u6 pic x(2) comp-x.        02 u7 index.            02 u8 usage procedure-pointer.
  02 u9 binary-char unsigned.   02 u10 usage binary-short signed.  02 u11 binary-long.
  02 u12 binary-double.         02 u13 float-short.     02 u14 usage float-long.
  02 g1 comp sync.
    03 g11 pic s9(4).
    03 g12 pic s9(9) synchronized right.
  02 s1 pic s9(3) sign leading.    02 s2 pic s9(3) trailing separate.
  02 s3 pic s9(3) sign is trailing separate character volatile.
  02 t1 occurs 2 to 5 times depending on u1 of big
     descending key t12, t11 indexed by ix iy.
    03 t11 pic 9.
    03 t12 pic x occurs 3 value spaces.
  02 v1 pic x(3) values "abc" & "def".   02 v2 pic 9 value -1.5e3.
  02 v3 pic x value all x"00".            02 v4 usage pointer value null.
    88 v41 values low-values, x"41" thru x"5a" all "ab" 1,2,-3.5.
    88 v42 value zero when set to false is 1.
  02 r1 pic x(4).
  02 r2 redefines r1 pic 9(4).
  02 r3 redefines r1.
    03 r31 pic xx.
    03 r32 redefines r31 pic 99.
  02 j1 pic a(5) justified right any length.
  02 b1 pic zz9 blank when zeros is global.
77 lone pic 9.
78 con value "x".
