        .section __interrupt_vector_9, "a", @progbits
        .word   0x4321
