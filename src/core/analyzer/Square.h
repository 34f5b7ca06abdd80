#pragma once

namespace sonavex {

constexpr double Square(double x) {
    return x * x;
}

}  // namespace sonavex
