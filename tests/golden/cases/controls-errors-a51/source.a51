; Refused dollar controls; each reports on its own line.
$RESTORE			; nothing saved
$ENDIF
$ELSE
$ELSEIF 1
LBL: $IF 1			; no label on $IF
$TITLE title
$SET A
$RESET(1)
$SET(X1=2 Y1)
$SET(ACC)			; a predefined name is no variable
$SET(D
$SET(E = LATER)			; a variable takes no forward reference
LBL2: $NOLIST
LBL3: $LIST
LBL4: $EJECT
$IF 1 2				; text behind the condition: no block
$ENDIF
LATER EQU 1
	END
