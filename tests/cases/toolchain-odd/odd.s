        .text
        .global odd
odd:    jmp     elsewhere
        jmp     1f
        .word   0x4015, 2               ; mov 2(pc), r5
1:      .word   0x4015, elsewhere       ; mov x(pc), r5
        mov     elsewhere, r5
        mov     odd-2, r5
        mov     0x1234, r5
        mov     &0x1234, r5
        .word   odd+0x1000, odd-2
        .word   0x0000
        .long   elsewhere, 0x12345678
        .byte   1, small, 3, 4
        .global fixed
fixed = 0x4000
        .comm   room, 6, 2
        .word room, fixed
        mov     elsewhere, r5
inner = . - 2
        .word inner
        .section .note, ""
note:   .word   1
