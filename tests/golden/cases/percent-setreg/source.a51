; The SETREG macro: two parameters, a local label numbered per call, and a
; %' comment cut from the first body line.
%*DEFINE (SETREG(REG,VAL)) LOCAL SKIP (
        CJNE  %REG,#%VAL,%SKIP   %' compare first
        NOP
%SKIP:  MOV   %REG,#%VAL
)
        CSEG  AT 0
        %SETREG(R3,5)
        %SETREG(A,7)
        END
