0010 ; Sequence numbers in the listing.
0020 	SEQ
0030 	CSEG	AT 0
0040 START:	DB	1,2,3,4,5	; the second row has no number
0050 
0060 ; a comment line
0070 NOPS	MACRO
0080 	NOP
0090 	ENDM
0100 	MEX
0110 	NOPS			; the expansion shows no number
0120 	UNA
0130 	IFEQ	1
0140 	DB	0		; skipped, with its number
0150 	ENDC
0160 	NOSEQ
0170 	DB	6		; line numbers again
0180 	SEQ
0250 	END			; numbers need not be consecutive
