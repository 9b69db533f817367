       >>SOURCE FORMAT IS FREE
replace ==pic text== by ==pic x(12)==
        leading ==a-== by ==account-==
        trailing ==-nbr== by ==-number==
        ==unwanted,== by ====.
01 account-record.
   05 a-nbr pic 9(10) unwanted.
   05 a-holder pic text.
replace off.
   05 a-text pic x.
   $SET SOURCEFORMAT"FIXED"
000100     05  B-TEXT PIC X.                                            ZZZZZZZZ
