/* What keeps two threads from the heap. libc_user_libc has locks that do nothing; a program with threads has
 * its own. */
#ifndef RUNTIME_LOCKS_H
#define RUNTIME_LOCKS_H

void __heap_lock(void);
void __heap_unlock(void);

#endif
