; An interrupt vector table with ORG $+n and ORG label+n in the absolute code
; segment: each ORG reads $ or the label before it starts the segment at the
; new address.
	CSEG	AT 0
VECTORS:
	LJMP	START		; reset, 0000H
	ORG	VECTORS+3
	LJMP	INT0_ISR	; external 0, 0003H
	ORG	$+5
	LJMP	TIMER0_ISR	; timer 0, 000BH
	ORG	$+5
	LJMP	INT1_ISR	; external 1, 0013H
	ORG	VECTORS+1BH
	LJMP	TIMER1_ISR	; timer 1, 001BH
	ORG	$+5
	RETI			; serial, 0023H: not used
PROG	SEGMENT	CODE
	RSEG	PROG
START:	SJMP	$
INT0_ISR:
TIMER0_ISR:
INT1_ISR:
TIMER1_ISR:
	RETI
	END
