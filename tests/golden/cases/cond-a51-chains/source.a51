$SET(MODE=2)
$SET(FAST)			; 0FFFFH
$RESET(SLOW, OTHER)
; A chain takes the first section whose condition holds, and no other.
$IF (MODE = 1)
	DB	0
$ELSEIF (MODE = 2)
	DB	1
$ELSEIF (MODE = 2)		; true as well, but a section was taken already
	DB	0
$ELSE
	DB	0
$ENDIF
; A nested block inside a skipped section, then a name never defined.
$IF SLOW
	DB	0
  $IF(FAST)
	DB	0
  $ELSE
	DB	0
  $ENDIF
$ELSEIF UNDEFINED_NAME		; reads as 0
	DB	0
$ELSE
	DB	2
$ENDIF
; Behind a taken section the conditions are not evaluated: no division by 0.
$IF FAST
	DW	MODE
$ELSEIF 1/0
	DB	0
$ENDIF
$IF OTHER
	DB	0
$ELSE
	DB	3
$ELSE				; a second $ELSE is one more branch, skipped
	DB	0
$ENDIF
$SET(MODE = MODE + 1)
	DB	MODE		; any expression reads the variables
$IF MODE = 3
	$IF FAST AND NOT SLOW
	DB	4
	$ENDIF
$ENDIF
	END
