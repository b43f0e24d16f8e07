        .section __interrupt_vector_60, "a", @progbits
        .word   0x4321
