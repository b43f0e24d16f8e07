/*! \brief Bytes: é · */
int bytes(void);
