/*! \brief A page that can't be written */
int blocked(void);

/*! \brief An operator: B & C, Grüße, 日本 */
bool operator<(A a, A b);

/*! \brief Not a file name */
A operator/(A a, A b);

/*! No \ingroup{...} here.

\synopsis
· \unknown keyword, <b>HTML</b>, 🙂 */
struct point {
    int x;
};

/*! \brief first
\ingroup{First} */
int twice(int a);

/*! \brief second
\ingroup{Second} */
int twice(char b);

/* Not for the pages. */
int plain(void);

/* ! Nor this. */
int spaced(void);
