; A __DEBUG block with faults, and no __DEBUGEND: every line is read and
; each fault reported; the object file is not kept.
	CSEG
	NOP
	__DEBUG
ASN1	NOSUCH
ASN2	
ASN3	1 2
ASN4	(5
BB5,0,03X.
ASN5	$
