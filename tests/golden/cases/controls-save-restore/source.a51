$TITLE(Listing controls)
	DB	1		; listed
$SAVE
$NOLIST
	DB	2		; not listed
$SAVE
$LIST
	DB	3		; listed: $LIST inside the outer $NOLIST
$RESTORE
	DB	4		; not listed: back to the outer $NOLIST
$RESTORE
	DB	5		; listed again, as the $RESTORE line above
$EJECT
$TITLE(Second page)
	DB	6		; on a new page, under the new title
	END
