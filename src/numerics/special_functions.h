// Log-gamma, log-factorial and the regularised incomplete gamma function,
// the special functions behind every exact and chi-square probability of
// the program.
#pragma once

// Logarithm of the gamma function for x > 0 (Lanczos series, six terms).
double gammln(double x);
// The same series in extended precision.
long double gammlnl(long double x);

// ln n!; 0 for n of 0 or 1, and 0 with error 105 for a negative n. Values up
// to n = 100 are cached, since exact tests ask for them in inner loops.
double factln(int n);
// The same in extended precision, with a cache of its own.
long double factlnl(int n);

// Upper regularised incomplete gamma Q(a, x) by the continued fraction
// (modified Lentz method), in single precision; best for x >= a + 1.
// *gln receives ln Gamma(a).
void gcf(float* result, float a, float x, float* gln);
// Lower regularised incomplete gamma P(a, x) by its series, in single
// precision; best for x < a + 1. *gln receives ln Gamma(a).
void gser(float* result, float a, float x, float* gln);

// Upper tail probability of a chi-square value with df degrees of freedom;
// -1.0 for df <= 0, and -1.0 with error 105 for a negative (or NaN) chi2.
double Prob_of_chi_sq(int df, double chi2);
