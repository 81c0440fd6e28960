; UNA from the command line lists the lines of skipped sections.
	IFEQ	1
	DB	0		; skipped, listed with UNA
	  IFNE	0		; nested: listed as text with CLIST
	DB	0
	  ENDC			; the nested ENDC: listed with UNA
	DB	0		; listed: CLIST is on
	ENDC
	OPT	NOCLIST
	IFEQ	0		; not listed: CLIST is off
	DB	1
	ENDC
	IFEQ	1		; not listed
	DB	0		; listed with UNA
	  IFNE	0		; not listed
	DB	0		; listed with UNA
	  ENDC			; not listed: the nested block handed CLIST on
	DB	0		; not listed either, UNA or not
	ELSE			; not listed
	DB	2
	ENDC
	OPT	CLIST
	END
