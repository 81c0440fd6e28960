; Nested blocks, and what the skip scanner of a false section counts: only a
; keyword behind white space at the start of its line, in any case.
	IFEQ	0
	DB	1
	  IFEQ	1		; false inside true
	DB	0
	  ELSE
	DB	2
	    IFNE 1		; true inside the ELSE section
	DB	3
	    ENDC
	  ENDC
	DB	4
	ENDC
	IFEQ	1		; false: the whole nest below is skipped
	DB	0
	  ifeq	0		; lower case counts as nesting
	DB	0
	  else			; the ELSE of a nested block does not end the skip
	DB	0
	  endc
ENDC	; in the first column this ends nothing
LAB	ENDC			; behind a label neither
	DB	0
	ELSE
	DB	5
	ENDC
	IFEQ	1
	DB	0
	ELSE			; a second ELSE ends the section the first one began
	DB	6
	ELSE
	DB	0
	ENDC
	IFEQ	0
	DB	7
	ELSE			; in an active block the first ELSE skips to ENDC
	DB	0
	ELSE
	DB	0
	ENDC
	IFEQ	1
  IF THIS WERE CODE IT WOULD NOT ASSEMBLE
	DB	0
	ENDC
	DB	8
	END
