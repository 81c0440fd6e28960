; Macros inside conditionals and conditionals inside macros.
; PICK chooses its instruction by its argument, with IFC on the text and
; IFEQ on the value; a definition inside a false section is never made, so
; the later call of GHOST is no macro call at all.
PICK    MACRO
        IFC     '\0','INC'
        INC     A
        ELSE
        IFEQ    \0
        CLR     A
        ELSE
        MOV     A,#\0
        ENDC
        ENDC
        ENDM
        CSEG    AT 0
        IFEQ    1
GHOST   MACRO
        IFEQ    0
        NOP
        ENDC
        ENDM
        ELSE
        PICK    INC
        ENDC
        MEX
        PICK    0
        PICK    7
        IFDEF   GHOST
        DB      1
        ELSE
        DB      2
        PICK    INC
        ENDC
        END
