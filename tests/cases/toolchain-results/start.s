; Copies initialised data, clears the rest, calls main.
        .text
        .global _start, finished
_start: mov     #__stack, sp
        mov     #__INITTAB_start__, r10
entry:  cmp     #__INITTAB_end__, r10
        jeq     run
        mov     @r10+, r12
        mov     @r10+, r13
        mov     @r10+, r14
next:   tst     r14
        jz      entry
        clr.b   r15
        tst     r12
        jz      store
        mov.b   @r12+, r15
store:  mov.b   r15, 0(r13)
        inc     r13
        dec     r14
        jmp     next
run:    call    #main
finished:
        jmp     finished

        .section __interrupt_vector_reset, "a", @progbits
        .word   _start
