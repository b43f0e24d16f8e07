        .bss
        .space  0x100001
