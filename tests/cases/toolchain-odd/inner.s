        .text
        .word   1
        .word   elsewhere
inner = . - 1
        .word   inner
