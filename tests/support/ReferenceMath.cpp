#include "support/ReferenceMath.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace sonavex::reference {
namespace {

constexpr long double kPi = std::numbers::pi_v<long double>;

Complex Turn(long double turns) {
    const long double angle = 2.0L * kPi * (turns - std::floor(turns));
    return {std::cos(angle), std::sin(angle)};
}

// Without the library's checks for infinities.
Complex Product(const Complex& a, const Complex& b) {
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

// e^(-2 pi i k / length) for every k.
std::vector<Complex> Roots(std::size_t length) {
    std::vector<Complex> roots;
    for (std::size_t k = 0; k < length; ++k)
        roots.push_back(Turn(-static_cast<long double>(k) / static_cast<long double>(length)));
    return roots;
}

// roots: roots of unity of a multiple of the length.
std::vector<Complex> DftByHalving(std::vector<Complex> x, const std::vector<Complex>& roots) {
    const std::size_t half = x.size() / 2;
    if (half == 0) return x;
    std::vector<Complex> even(half);
    std::vector<Complex> odd(half);
    for (std::size_t t = 0; t < half; ++t) {
        even[t] = x[2 * t];
        odd[t] = x[2 * t + 1];
    }
    even = DftByHalving(std::move(even), roots);
    odd = DftByHalving(std::move(odd), roots);
    for (std::size_t k = 0; k < half; ++k) {
        const Complex turned = Product(odd[k], roots[k * (roots.size() / x.size())]);
        x[k] = even[k] + turned;
        x[k + half] = even[k] - turned;
    }
    return x;
}

}  // namespace

std::vector<Complex> NaiveDft(std::span<const double> re, std::span<const double> im) {
    const std::size_t length = re.size();
    const std::vector<Complex> roots = Roots(length);
    std::vector<Complex> out(length);
    for (std::size_t k = 0; k < length; ++k)
        for (std::size_t t = 0; t < length; ++t)
            out[k] += Product(Complex(re[t], im[t]), roots[k * t % length]);
    return out;
}

std::vector<Complex> Dft(std::vector<Complex> x) {
    const std::vector<Complex> roots = Roots(x.size());
    return DftByHalving(std::move(x), roots);
}

std::vector<Complex> InverseDft(std::vector<Complex> x) {
    x = Dft(std::move(x));
    std::reverse(x.begin() + 1, x.end());
    for (Complex& value : x) value /= static_cast<long double>(x.size());
    return x;
}

Complex DftAt(std::span<const double> x, long double fraction) {
    Complex sum = 0.0L;
    for (std::size_t t = 0; t < x.size(); ++t) {
        const Complex root = Turn(-fraction * static_cast<long double>(t));
        sum += Complex(x[t] * root.real(), x[t] * root.imag());
    }
    return sum;
}

std::vector<double> Bandpass(long double low, long double high, std::int32_t taps) {
    std::vector<double> response(static_cast<std::size_t>(taps));
    const long double last = taps - 1;
    for (std::int32_t n = 0; n < taps; ++n) {
        // Integral of 2 cos(2 pi f t) over the band; at the centre, twice its width.
        const long double t = n - last / 2.0L;
        const long double ideal =
            t == 0.0L ? 2.0L * (high - low)
                      : (std::sin(2.0L * kPi * high * t) - std::sin(2.0L * kPi * low * t)) / (kPi * t);
        const long double window =
            0.42L - 0.5L * std::cos(2.0L * kPi * n / last) + 0.08L * std::cos(4.0L * kPi * n / last);
        response[static_cast<std::size_t>(n)] = static_cast<double>(ideal * window);
    }
    const long double gain = std::abs(DftAt(response, (low + high) / 2.0L));
    for (double& tap : response) tap = static_cast<double>(tap / gain);
    return response;
}

}  // namespace sonavex::reference
