#ifndef CALENDAR_H
#define CALENDAR_H

/*! \brief A date and a time of day.
\ingroup Types
\split Types
\title \this

\synopsis

\description
A point in time as people write it. The year is in full, months and days count from 1, and the day has 24 hours.

\stds
The calendar is that of ISO 8601, from \b 1970 to \b 2099.
*/
struct calendar_time {
    unsigned short year;
    unsigned char month, day;
    unsigned char hour, minute, second;
};

/*! \brief Go on by one second.
\ingroup{The clock}
\split{The clock}
\title \this

\synopsis

\description
\this adds a second to the time of the clock. Call it from the interrupt of a timer; it takes at most
40\,\bi{µs} at 8\,MHz.

\ts
Interrupts must be off while \this runs. In an interrupt function they are.

\sa
\xref calendar_now
*/
void calendar_tick(void);

/*! \brief The time now.
\ingroup{The clock}
\split{The clock}
\title \this

\synopsis

\description
\this copies the clock's time to \c now, and is safe against \xref calendar_tick in between: it reads again until
two readings agree.
*/
void calendar_now(struct calendar_time *now);

/*! \brief Set the clock.
\ingroup{The clock}
\split{The clock}
\title \this

\synopsis

\description
\this sets the clock to \c to, and starts it.

\errors
A date that isn't one, such as 30\,February, is refused: \this returns \-1 and the clock goes on.
*/
int calendar_set(const struct calendar_time *to);

#endif
