        .text
        .global main
main:   mov     #table, r12
        mov     #__my_data_size__, r13
        mov     #__HEAP_start__, r14
        mov     #__INITTAB_start__, r15
        call    #alias
        ret
        .section .rodata
table:  .word   0x1234, main
        .byte   small
        .section my.data, "aw"
        .byte   1, 2, 3
        .bss
        .space  4
