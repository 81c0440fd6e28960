; Every IF keyword, once true and once false. Each active section stores the
; next number in sequence, each skipped one a zero, so the object shows at a
; glance which sections were taken.
VAL	EQU	5
	IFC	abc,abc		; equal strings: taken
	DB	1
	ELSE
	DB	0
	ENDC
	IFC	ABC,abc		; case counts: skipped, the ELSE is taken
	DB	0
	ELSE
	DB	2
	ENDC
	IFNC	a,b
	DB	3
	ENDC
	IFNC	"x","x"		; quotes are characters of the string
	DB	0
	ENDC
	IFIC	ABC,abc
	DB	4
	ENDC
	IFINC	ABC,abc
	DB	0
	ENDC
	IFC	,		; two empty strings are equal
	DB	5
	ENDC
	IFGT	VAL-5
	DB	0
	ENDC
	IFGT	VAL
	DB	6
	ENDC
	IFGE	VAL-5
	DB	7
	ENDC
	IFGE	VAL-6
	DB	0
	ENDC
	IFLT	VAL-6
	DB	8
	ENDC
	IFLT	VAL-5
	DB	0
	ENDC
	IFLE	VAL-5
	DB	9
	ENDC
	IFLE	VAL-4
	DB	0
	ENDC
	IFEQ	VAL
	DB	0
	ELSEC
	DB	10
	ENDC
	IFEQ	VAL-5
	DB	11
	ENDC
	IFNE	VAL
	DB	12
	ENDC
	IFNE	VAL-5
	DB	0
	ENDC
	IFDEF	VAL
	DB	13
	ENDC
	IFDEF	NOTHING extra	; nothing behind the name is read
	DB	0
	ENDC
	IFNDEF	NOTHING
	DB	14
	ENDC
	IFNDEF	VAL
	DB	0
	ENDC
	END
