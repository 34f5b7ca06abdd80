#include <fftw3.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <memory>

#include "core/dsp/VectorKernels.h"
#include "core/dsp/modSPL2VB.h"
#include "core/support/RuntimeError.h"

namespace sonavex::modSPL2VB {
namespace {

constexpr std::int32_t kHighestOrder = 20;

// The four arrays of one transform.
struct SplitArrays {
    double* inRe;
    double* inIm;
    double* outRe;
    double* outIm;

    // Exchanging real and imaginary parts at input and output turns the forward transform into the inverse.
    SplitArrays Exchanged() const noexcept { return {inIm, inRe, outIm, outRe}; }
};

// One FFTW plan. Estimated plans give the same results in every run. The plan is valid for arrays with the
// spacing and alignment of those it was made for.
class LibraryPlan {
public:
    LibraryPlan(std::int32_t length, const SplitArrays& at) {
        const fftw_iodim dimension{length, 1, 1};
        plan_ = fftw_plan_guru_split_dft(1, &dimension, 0, nullptr, at.inRe, at.inIm, at.outRe, at.outIm,
                                         FFTW_ESTIMATE);
        if (plan_ == nullptr) throw RuntimeError(error_number::kOutOfMemory);
    }
    ~LibraryPlan() { fftw_destroy_plan(plan_); }
    LibraryPlan(const LibraryPlan&) = delete;
    LibraryPlan& operator=(const LibraryPlan&) = delete;

    void Execute(const SplitArrays& at) const {
        fftw_execute_split_dft(plan_, at.inRe, at.inIm, at.outRe, at.outIm);
    }

private:
    fftw_plan plan_ = nullptr;
};

bool Aligned(const SplitArrays& arrays) {
    for (double* array : {arrays.inRe, arrays.inIm, arrays.outRe, arrays.outIm})
        if (fftw_alignment_of(array) != 0) return false;
    return true;
}

// Distance from one array to another in bytes.
std::intptr_t Distance(const double* from, const double* to) {
    return reinterpret_cast<std::intptr_t>(to) - reinterpret_cast<std::intptr_t>(from);
}

std::int32_t CheckedLength(std::int32_t order) {
    if (order < 1 || order > kHighestOrder) throw RuntimeError(error_number::kInvalidCall);
    return 1 << order;
}

std::size_t CheckedSpacing(std::size_t spacing, std::int32_t length) {
    if (spacing == 0) return static_cast<std::size_t>(length);
    if (spacing < static_cast<std::size_t>(length)) throw RuntimeError(error_number::kInvalidCall);
    return spacing;
}

}  // namespace

struct FftPlan::Plans {
    Plans(std::int32_t fftOrder, std::size_t arraySpacing)
        : order(fftOrder),
          length(CheckedLength(fftOrder)),
          spacing(CheckedSpacing(arraySpacing, length)),
          memory(fftw_alloc_real(4 * spacing), fftw_free),
          forward(length, Own()),
          backward(length, Own().Exchanged()) {}

    // The plan's own arrays, with the planned spacing.
    SplitArrays Own() const noexcept {
        double* const at = memory.get();
        return {at, at + spacing, at + 2 * spacing, at + 3 * spacing};
    }

    bool Fits(const SplitArrays& arrays) const {
        const auto planned = static_cast<std::intptr_t>(spacing * sizeof(double));
        return Distance(arrays.inRe, arrays.inIm) == planned &&
               Distance(arrays.outRe, arrays.outIm) == planned && Aligned(arrays);
    }

    void Execute(const SplitArrays& arrays, std::int32_t flags) const {
        if (flags == kForward)
            forward.Execute(arrays);
        else
            backward.Execute(arrays.Exchanged());
    }

    void ExecuteInOwnMemory(const SplitArrays& arrays, std::int32_t flags) const {
        const SplitArrays own = Own();
        std::copy_n(arrays.inRe, length, own.inRe);
        std::copy_n(arrays.inIm, length, own.inIm);
        Execute(own, flags);
        std::copy_n(own.outRe, length, arrays.outRe);
        std::copy_n(own.outIm, length, arrays.outIm);
    }

    std::int32_t order;
    std::int32_t length;
    std::size_t spacing;
    std::unique_ptr<double, void (*)(void*)> memory;
    LibraryPlan forward;
    LibraryPlan backward;
};

FftPlan::FftPlan(std::int32_t order, std::size_t arraySpacing)
    : plans_(std::make_unique<Plans>(order, arraySpacing)) {}
FftPlan::~FftPlan() = default;
FftPlan::FftPlan(FftPlan&&) noexcept = default;
FftPlan& FftPlan::operator=(FftPlan&&) noexcept = default;

std::int32_t FftPlan::Order() const noexcept {
    return plans_->order;
}

void nspzrFftNip(const FftPlan& plan, ConstVector inRe, ConstVector inIm, Vector outRe, Vector outIm,
                 std::int32_t flags) {
    const auto length = static_cast<std::size_t>(plan.plans_->length);
    for (const ConstVector vector : {inRe, inIm, ConstVector(outRe), ConstVector(outIm)})
        if (vector.size() < length) throw RuntimeError(error_number::kSubscript);
    if (flags != kForward && flags != kInverse) throw RuntimeError(error_number::kInvalidCall);
    // FFTW takes its input as writable, but an out-of-place transform does not change it.
    const SplitArrays arrays{const_cast<double*>(inRe.data()), const_cast<double*>(inIm.data()), outRe.data(),
                             outIm.data()};
    if (plan.plans_->Fits(arrays))
        plan.plans_->Execute(arrays, flags);
    else
        plan.plans_->ExecuteInOwnMemory(arrays, flags);
    if (flags == kForward) return;
    kernels::Scale(1.0 / static_cast<double>(length), outRe.data(), length);
    kernels::Scale(1.0 / static_cast<double>(length), outIm.data(), length);
}

}  // namespace sonavex::modSPL2VB
