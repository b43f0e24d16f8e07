int both, larger[8];
int given(void) { return larger[7]; }
int unused(void) { return both; }
