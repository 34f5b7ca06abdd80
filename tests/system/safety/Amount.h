#pragma once

#include <cstdlib>
#include <iostream>
#include <random>
#include <string>

namespace sonavex {

// A whole number from the environment, or the default.
inline unsigned long FromEnvironment(const char* name, unsigned long otherwise) {
    const char* const text = std::getenv(name);
    return text != nullptr && *text != '\0' ? std::stoul(text) : otherwise;
}

// Random moments of one test. The seed is printed; SONAVEX_SAFETY_SEED repeats it.
class Chance {
public:
    explicit Chance(const char* purpose)
        : seed_(FromEnvironment("SONAVEX_SAFETY_SEED", std::random_device()())) {
        random_.seed(static_cast<std::mt19937::result_type>(seed_));
        std::cout << purpose << ": SONAVEX_SAFETY_SEED=" << seed_ << std::endl;
    }
    // Random number from 0 to limit.
    unsigned long Below(unsigned long limit) {
        return std::uniform_int_distribution<unsigned long>(0, limit - 1)(random_);
    }

private:
    unsigned long seed_;
    std::mt19937 random_;
};

// Number of processes that one test kills; SONAVEX_SAFETY_KILLS increases it.
inline unsigned long Kills(unsigned long shortForm) {
    return FromEnvironment("SONAVEX_SAFETY_KILLS", shortForm);
}

}  // namespace sonavex
