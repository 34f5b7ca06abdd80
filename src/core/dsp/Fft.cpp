#include <fftw3.h>

#include <initializer_list>
#include <memory>

#include "core/dsp/VectorKernels.h"
#include "core/dsp/modSPL2VB.h"
#include "core/text/RuntimeError.h"

namespace sonavex::modSPL2VB {
namespace {

constexpr std::int32_t kHighestOrder = 20;

// One plan of the library. Planning on estimates keeps results the same from run to run.
class LibraryPlan {
public:
    LibraryPlan(std::int32_t length, unsigned flags) {
        const auto size = static_cast<std::size_t>(length);
        const std::unique_ptr<double, void (*)(void*)> memory(fftw_alloc_real(4 * size), fftw_free);
        double* const at = memory.get();
        const fftw_iodim dimension{length, 1, 1};
        plan_ = fftw_plan_guru_split_dft(1, &dimension, 0, nullptr, at, at + size, at + 2 * size,
                                         at + 3 * size, FFTW_ESTIMATE | flags);
        if (plan_ == nullptr) throw RuntimeError(error_number::kOutOfMemory);
    }
    ~LibraryPlan() { fftw_destroy_plan(plan_); }
    LibraryPlan(const LibraryPlan&) = delete;
    LibraryPlan& operator=(const LibraryPlan&) = delete;

    void Execute(const double* inRe, const double* inIm, double* outRe, double* outIm) const {
        // The library takes its input as writable; a transform that is not in place leaves it alone.
        fftw_execute_split_dft(plan_, const_cast<double*>(inRe), const_cast<double*>(inIm), outRe, outIm);
    }

private:
    fftw_plan plan_ = nullptr;
};

bool Aligned(std::initializer_list<const double*> arrays) {
    for (const double* array : arrays)
        if (fftw_alignment_of(const_cast<double*>(array)) != 0) return false;
    return true;
}

std::int32_t CheckedLength(std::int32_t order) {
    if (order < 1 || order > kHighestOrder) throw RuntimeError(error_number::kInvalidCall);
    return 1 << order;
}

}  // namespace

struct FftPlan::Plans {
    explicit Plans(std::int32_t fftOrder)
        : order(fftOrder),
          length(CheckedLength(fftOrder)),
          aligned(length, 0),
          anywhere(length, FFTW_UNALIGNED) {}

    void Execute(const double* inRe, const double* inIm, double* outRe, double* outIm) const {
        (Aligned({inRe, inIm, outRe, outIm}) ? aligned : anywhere).Execute(inRe, inIm, outRe, outIm);
    }

    std::int32_t order;
    std::int32_t length;
    LibraryPlan aligned;
    LibraryPlan anywhere;
};

FftPlan::FftPlan(std::int32_t order) : plans_(std::make_unique<Plans>(order)) {}
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
    if (flags == kForward) {
        plan.plans_->Execute(inRe.data(), inIm.data(), outRe.data(), outIm.data());
        return;
    }
    if (flags != kInverse) throw RuntimeError(error_number::kInvalidCall);
    // With real and imaginary parts exchanged on both sides the forward transform runs backwards.
    plan.plans_->Execute(inIm.data(), inRe.data(), outIm.data(), outRe.data());
    kernels::Scale(1.0 / static_cast<double>(length), outRe.data(), length);
    kernels::Scale(1.0 / static_cast<double>(length), outIm.data(), length);
}

}  // namespace sonavex::modSPL2VB
