        .text
        .word   1
        jmp     elsewhere
inner = . - 1
        .word   inner
