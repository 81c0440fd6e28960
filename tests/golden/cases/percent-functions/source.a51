; The functions of the percent language as numbers in expressions, and the
; percent keywords that are statements doing nothing.
        CSEG  AT 0
        DB    %EVAL(2*3+1)                                      ; 7
        DB    1+%EVAL(2), 1+%EVAL(3), %EVAL(%LEN(abcd) SHL 1)   ; 3 4 8
        DB    %EQS(ab,ab), %EQS(a, a), %NES(a,b), %NES(x,x)     ; 1 0 1 0
        DB    %LTS(ab,abc), %LTS(b,abc), %LES(a,a), %LES(b,a)   ; 1 0 1 0
        DB    %GTS(b,abc), %GTS(ab,abc), %GES(b,b), %GES(a,b)   ; 1 0 1 0
        DB    %LEN(a b), %LEN( ), %LEN(), %LEN (xyz)            ; 3 1 0 3
        DB    %LEN(xyz), %EQS(A,a), %MATCH + 5                  ; 3 0 5
        DB    %101, 2+%11, %EVAL(LATER+1)                       ; 5 5 5
        MOV   A,#%LEN(hello)
        %METACHAR (!)
        %SET (X, 1)
        %EVAL (1)
        %EQS
        %NES
        %LTS
        %LES
        %GTS
        %GES
        %WHILE (0)
        %REPEAT (2)
        %EXIT
        %LEN
        %MATCH
        %IN
        %OUT (text)
PROG    SEGMENT CODE
        RSEG  PROG
HERE:   DW    HERE+%EVAL(2AH)
LATER   EQU   4
        END
