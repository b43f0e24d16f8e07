        .section __interrupt_vector_64, "a", @progbits
        .word   0x4321
