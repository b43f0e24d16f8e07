/* The assembler takes what follows a semicolon for a comment; a brace separates instructions of one line. */
/* A function in a section of its own, so that the linker can leave it out. */
#define FUNCTION(NAME)                                                                                               \
    .section .text.NAME, "ax", @progbits {                                                                           \
    .p2align 1 {                                                                                                     \
    .global NAME {                                                                                                   \
    NAME:
