; DB strings and quotes, DB and DW values, and the list rows of long statements.
TEXT:	DB	'A', 41H	; a character constant and a number: the same byte
	DB	'AB'		; a string: one record per character
	DB	''		; an empty string stores nothing
	DB	'IT''S'		; a doubled quote is one quote
	DB	''', '"'	; a quote and a double quote as constants
	DB	300, -1, 1234H	; only the low byte counts
	DW	1234H, -2, 'AB', TEXT
	DB	LOW(TEXT), HIGH(LATER), $
	DB	'0123456789', 0DH, 0AH, 'ABCDEFGHIJKLMNOPQRSTUVWXYZ', 0
PROG	SEGMENT	CODE
	RSEG	PROG
LATER:	DB	'string in a relocatable segment', 0
	DW	LATER, LATER+2, $, TEXT
	DB	LOW(LATER), HIGH(LATER+100H)
	END
