#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/ports/Background.h"
#include "core/precise/PreciseMeter.h"
#include "core/precise/StimulusPlayer.h"
#include "core/preview/PreviewAnalysis.h"
#include "core/run/RunPlan.h"

namespace sonavex {

// The preview of a run: one period of a sweep, which is played before the first point. User-interface thread.
class RunPreview {
public:
    // Must outlive this object.
    explicit RunPreview(Background& background) : background_(background) {}

    // For a run that begins. Without a preview in its plan nothing is pending. Takes tens of milliseconds.
    void Prepare(const RunPlan& plan, const std::vector<RunPoint>& points, double rateHz);
    // From Prepare until the sweep was recorded or given up.
    bool Pending() const noexcept { return pending_; }
    // What the measurement of the sweep changes in that of the first point. Only while it is pending.
    void Choose(PreciseSettings& settings, StimulusChoice& choice) const;
    // Length of the sweep's period; 0 if nothing is pending.
    double Seconds() const;

    // The samples of the collection. Those that cannot be analysed leave no preview, only a trouble.
    void Take(const Record& record);
    void GiveUp(const std::string& trouble);

    // In the order of the points of the first level, without those that the sweep does not cover. Empty until
    // it has been analysed.
    const std::vector<PreviewPoint>& Points() const noexcept { return points_; }
    // Why there is no preview; empty otherwise.
    const std::string& Trouble() const noexcept { return trouble_; }

    // Called when the points are known. May be empty.
    std::function<void()> OnPoints;

private:
    Background& background_;
    bool pending_ = false;
    // Ends with the next Prepare, which drops its late result.
    std::shared_ptr<const PreviewAnalysis> analysis_;
    std::vector<double> frequenciesHz_;
    double levelDbfs_ = 0;
    std::vector<PreviewPoint> points_;
    std::string trouble_;
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace sonavex
