#pragma once

#include <cstddef>

// The inner loops of modSPL2VB, compiled for several instruction sets; the machine's best is selected at
// start. Plain pointers without checks: every array has n elements.
namespace sonavex::kernels {

void Add(const double* a, const double* b, double* out, std::size_t n);
void Scale(double value, double* data, std::size_t n);
void Multiply(const double* a, const double* b, double* out, std::size_t n);
double Max(const double* data, std::size_t n);
void Magnitudes(const double* re, const double* im, double* out, std::size_t n);
double MaxSquaredMagnitude(const double* re, const double* im, std::size_t n);
void MultiplyComplex(const double* factorRe, const double* factorIm, double* re, double* im, std::size_t n);
void Atan2(const double* y, const double* x, double* out, std::size_t n);
void Sin(const double* angle, double* out, std::size_t n);
void Cos(const double* angle, double* out, std::size_t n);

}  // namespace sonavex::kernels
