#ifndef RING_BUFFER_H
#define RING_BUFFER_H

/*! \brief A queue of bytes in memory that the caller owns.
\ingroup{Types}
\split Types
\title \this

\synopsis

\description
A queue of bytes with one reader and one writer. All fields are private to the functions: give the structure its
memory with \xref{ring_init}, and don't copy it.

\sa
\xref ring_init, \xref ring_put, \xref ring_get
*/
typedef struct ring {
    unsigned char *data; /* the caller's memory */
    unsigned mask;       /* its size less one */
    volatile unsigned head;
    volatile unsigned tail;
} ring_t;

/*! \brief Prepare a buffer.
\ingroup{Setting up}
\split{Setting up}
\title \this

\synopsis

\description
\this gives \c ring the memory at \c memory and makes it empty.

\item \c size must be a power of two, from 2 to 32\,768.
\item One byte always stays free: a buffer of 64 holds 63.

\errors
\this returns \-1 if \c size isn't a power of two, and 0 otherwise. Nothing is changed then.

\section Example
\code
static unsigned char memory[64];
static ring_t log;

if (ring_init(\&log, memory, sizeof memory) \< 0)
    panic();
\endcode

\sa
\xref ring_t
*/
int ring_init(ring_t *ring, unsigned char *memory, unsigned size);

/*! \brief Write a byte.
\ingroup{Reading and writing}
\split{Reading and writing}
\title \this

\synopsis

\description
\this puts \c byte behind the others. It never waits.

\errors
\this returns \-1 if the buffer is full; the byte is lost then.

\ts
One writer may call \this while one reader calls \xref ring_get. Two writers need a lock.

\sa
\xref ring_get, \xref ring_count
*/
int ring_put(ring_t *ring, unsigned char byte);

/*! \brief Read a byte.
\ingroup{Reading and writing}
\split{Reading and writing}
\title \this

\synopsis

\description
\this takes the oldest byte out of the buffer and returns it, 0 to 255.

\errors
\this returns \-1 if the buffer is empty.

\ts
One reader may call \this while one writer calls \xref ring_put.

\sa
\xref ring_put
*/
int ring_get(ring_t *ring);

/*! \brief How many bytes wait.
\ingroup{Reading and writing}
\split{Reading and writing}
\title \this

\synopsis

\description
\this counts the bytes that were put in and not taken out.

\note
With an interrupt on the other side the answer is old when it comes.
*/
unsigned ring_count(const ring_t *ring);

/*! \brief Hand every byte to a function.
\ingroup{Reading and writing}
\split{Reading and writing}
\title \this

\synopsis

\description
\this takes all bytes out, the oldest first, and calls \c take for each, with \c context as it was given.
\this stops early if \c take returns something other than 0, and returns that.

\step The bytes that wait at the time of the call are counted.
\step Each is taken out and handed over.
\step What comes in meanwhile stays for the next call.
*/
int ring_drain(ring_t *ring, int (*take)(void *context, int byte), void *context);

#endif
