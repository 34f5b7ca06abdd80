#pragma once

#include <cstddef>

// The inner loops of the fit, compiled for several instruction sets; the machine's best is selected at start.
// Plain pointers without checks: every array has n elements. Results are the same on all machines.
namespace sonavex::line_kernels {

struct Sums {
    double re;
    double im;
};

// sum of x re, sum of x im
Sums Matched(const double* x, const double* re, const double* im, std::size_t n);

// x -= re factorRe - im factorIm
void Subtract(double factorRe, double factorIm, const double* re, const double* im, double* x, std::size_t n);

// out = x w
void Weigh(const double* x, const double* w, double* out, std::size_t n);

double Sum(const double* x, std::size_t n);

// sum of a b
double Dot(const double* a, const double* b, std::size_t n);

// sum of a^2 b
double SquareDot(const double* a, const double* b, std::size_t n);

// sum of x^4
double FourthPowers(const double* x, std::size_t n);

// sum of (x[i] - 2 x[i - 1] + x[i - 2])^2; two more elements precede x.
double SecondDifferenceSquares(const double* x, std::size_t n);

// exp(2 pi i (coarse + fine) m) for m = first, first + step ... The products of coarse and m must be exact.
void Phasors(double coarse, double fine, double first, double step, double* re, double* im, std::size_t n);

}  // namespace sonavex::line_kernels
