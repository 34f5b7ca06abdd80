#include "core/precise/RecordingMeasurement.h"

#include <utility>

namespace sonavex {

// Changed by one task at a time, and by the user-interface thread only between tasks.
struct RecordingMeasurement::Job {
    const MeasurementFiles& files;
    std::string path;
    std::shared_ptr<const RecordPlan> plan;
    PreciseSettings settings;
    std::optional<std::size_t> only;  // this record
    std::shared_ptr<RecordingAnalysis> analysis = nullptr;
    bool complete = false;
    std::string failure = {};

    void Step() {
        try {
            MeasureStep();
        } catch (const FileError& error) {
            failure = error.what();
        }
    }

private:
    void MeasureStep() {
        if (!analysis) analysis = std::make_shared<RecordingAnalysis>(files.Open(path), plan, settings);
        if (only) {
            analysis->MeasureOnly(*only);
            complete = true;
            return;
        }
        complete = !analysis->MeasureNext();
    }
};

void RecordingMeasurement::Open(const std::string& path) {
    const std::unique_ptr<OpenRecording> file = needs_.files.Open(path);
    Cancel();
    recording_ = {path,          file->RateHz(), file->Bits(), file->FloatingPoint(), file->Channels(),
                  file->Frames()};
}

void RecordingMeasurement::Close() {
    Cancel();
    recording_ = {};
    plan_.reset();
}

std::optional<std::size_t> RecordingMeasurement::RecordsOfLength(std::size_t length) const {
    if (!recording_.frames) return std::nullopt;
    return CountRecords(*recording_.frames, length);
}

void RecordingMeasurement::MeasureAll(const PreciseSettings& settings) {
    Start(settings, std::nullopt);
}

void RecordingMeasurement::MeasureRecord(const PreciseSettings& settings, std::size_t index) {
    Start(settings, index);
}

void RecordingMeasurement::Cancel() {
    job_.reset();
}

void RecordingMeasurement::Start(PreciseSettings settings, std::optional<std::size_t> only) {
    const double rateHz = recording_.rateHz;
    const std::size_t length = settings.length != 0 ? settings.length : DefaultRecordLength(rateHz);
    if (!plan_ || plan_->Length() != length || plan_->RateHz() != rateHz)
        plan_ = std::make_shared<const RecordPlan>(length, rateHz);
    job_ = std::make_shared<Job>(Job{needs_.files, recording_.path, plan_, std::move(settings), only});
    Continue();
}

void RecordingMeasurement::Continue() {
    needs_.background.Run(Background::Line::kRecording,
                          [this, alive = std::weak_ptr(alive_), job = job_]() -> Background::Result {
                              job->Step();
                              return [this, alive, job] {
                                  if (!alive.expired() && job == job_) Receive(*job);
                              };
                          });
}

void RecordingMeasurement::Receive(const Job& job) {
    if (!job.failure.empty() || job.complete) job_.reset();
    if (!job.failure.empty()) {
        if (OnFailure) OnFailure(job.failure);
    } else if (job.complete) {
        if (OnReading) OnReading(job.analysis->Values(), job.analysis);
    } else {
        Continue();
        if (OnProgress) OnProgress(job.analysis->Measured(), job.analysis->Records());
    }
}

}  // namespace sonavex
