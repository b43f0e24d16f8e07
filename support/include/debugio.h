/* Texts for whoever watches the program: they go to address 00FF, where the simulator listens, whatever
 * printf does. */
#ifndef _DEBUGIO_H
#define _DEBUGIO_H

void debug_putchar(int c);
void debug_puts(const char* text); /* and a line feed */

#endif
