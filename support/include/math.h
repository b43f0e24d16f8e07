#ifndef _MATH_H
#define _MATH_H

#define HUGE_VAL __builtin_huge_val()
#define INFINITY __builtin_inff()
#define NAN __builtin_nanf("")
#define isnan(x) __builtin_isnan(x)
#define isinf(x) __builtin_isinf(x)
#define M_PI 3.14159265358979323846

double fabs(double x);
double floor(double x);
double ceil(double x);
double fmod(double x, double y);
double modf(double x, double* whole);
double frexp(double x, int* exponent);
double ldexp(double x, int exponent);
double sqrt(double x);
double exp(double x);
double log(double x);
double pow(double x, double y);
double sin(double x);
double cos(double x);
double tan(double x);
double atan(double x);

#endif
