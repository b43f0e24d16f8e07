        .text
        .word   note
        .section .note, ""
note:   .word   1
