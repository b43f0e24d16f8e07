/* Arguments behind the named ones. They lie on the stack, one after the other, each in an even number of
   bytes.

   This stands in the place of the compiler's own header: with optimisation, clang makes wrong code of its
   built-in va_arg when the arguments are longer than an int. */
#ifndef __STDARG_TYPES
#define __STDARG_TYPES
typedef __builtin_va_list __gnuc_va_list;
typedef __builtin_va_list va_list;
#endif

#ifndef __need___va_list
#ifndef __STDARG_MACROS
#define __STDARG_MACROS
#define __va_bytes(type) ((sizeof(type) + 1) & ~(sizeof(int) - 1))
#define va_start(list, last) __builtin_va_start(list, last)
#define va_end(list) ((void)0)
#define va_arg(list, type) (*(type*)(((list) += __va_bytes(type)) - __va_bytes(type)))
#define va_copy(to, from) ((void)((to) = (from)))
#define __va_copy(to, from) va_copy(to, from)
#endif
#endif
#undef __need___va_list
#undef __need_va_list
