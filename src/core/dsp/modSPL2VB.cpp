#include "core/dsp/modSPL2VB.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "core/dsp/VectorKernels.h"
#include "core/support/RuntimeError.h"

namespace sonavex::modSPL2VB {
namespace {

// The count as a size, once every array is known to hold it.
std::size_t Checked(std::int32_t n, std::initializer_list<ConstVector> vectors) {
    const auto count = static_cast<std::size_t>(std::max(n, 0));
    for (const ConstVector& vector : vectors)
        if (vector.size() < count) throw RuntimeError(error_number::kSubscript);
    return count;
}

std::size_t CheckedAtLeastOne(std::int32_t n, std::initializer_list<ConstVector> vectors) {
    if (n < 1) throw RuntimeError(error_number::kInvalidCall);
    return Checked(n, vectors);
}

}  // namespace

void nspdbAdd2(ConstVector src, Vector dst, std::int32_t n) {
    kernels::Add(dst.data(), src.data(), dst.data(), Checked(n, {src, dst}));
}

void nspdbAdd3(ConstVector srcA, ConstVector srcB, Vector dst, std::int32_t n) {
    kernels::Add(srcA.data(), srcB.data(), dst.data(), Checked(n, {srcA, srcB, dst}));
}

void nspdbMpy1(double value, Vector dst, std::int32_t n) {
    kernels::Scale(value, dst.data(), Checked(n, {dst}));
}

void nspdbMpy2(ConstVector src, Vector dst, std::int32_t n) {
    kernels::Multiply(dst.data(), src.data(), dst.data(), Checked(n, {src, dst}));
}

void nspdbCopy(ConstVector src, Vector dst, std::int32_t n) {
    std::copy_n(src.begin(), Checked(n, {src, dst}), dst.begin());
}

double nspdMax(ConstVector vec, std::int32_t n) {
    return kernels::Max(vec.data(), CheckedAtLeastOne(n, {vec}));
}

void nspdbrCartToPolar(ConstVector re, ConstVector im, Vector mag, Vector phase, std::int32_t n) {
    const std::size_t count = Checked(n, {re, im, mag, phase});
    kernels::Atan2(im.data(), re.data(), phase.data(), count);
    kernels::Magnitudes(re.data(), im.data(), mag.data(), count);
}

void nspdbrPolarToCart(ConstVector mag, ConstVector phase, Vector re, Vector im, std::int32_t n) {
    const std::size_t count = Checked(n, {mag, phase, re, im});
    kernels::Cos(phase.data(), re.data(), count);
    kernels::Sin(phase.data(), im.data(), count);
    kernels::Multiply(mag.data(), re.data(), re.data(), count);
    kernels::Multiply(mag.data(), im.data(), im.data(), count);
}

void Magnitudes(ConstVector re, ConstVector im, Vector mag, std::int32_t n) {
    kernels::Magnitudes(re.data(), im.data(), mag.data(), Checked(n, {re, im, mag}));
}

double LargestMagnitude(ConstVector re, ConstVector im, std::int32_t n) {
    return std::sqrt(kernels::MaxSquaredMagnitude(re.data(), im.data(), CheckedAtLeastOne(n, {re, im})));
}

void MultiplyComplex(ConstVector factorRe, ConstVector factorIm, Vector re, Vector im, std::int32_t n) {
    kernels::MultiplyComplex(factorRe.data(), factorIm.data(), re.data(), im.data(),
                             Checked(n, {factorRe, factorIm, re, im}));
}

void Sines(ConstVector angle, Vector out, std::int32_t n) {
    kernels::Sin(angle.data(), out.data(), Checked(n, {angle, out}));
}

}  // namespace sonavex::modSPL2VB
