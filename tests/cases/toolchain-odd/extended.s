        .text
        .word   0x1880, 0x407a, 0x2345          ; movx.a #0x12345, r10
        .word   0x18c2, 0x4292, 0x2345, 0xabcd  ; movx &0x12345, &0x2abcd
        .word   0x1845, 0x5405                  ; rpt #6, addx r4, r5
        .word   0x1800, 0x3c01                  ; none: no jump is extended
