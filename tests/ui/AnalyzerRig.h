#pragma once

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>

#include "support/AnalyzerNeeds.h"
#include "support/FormRig.h"
#include "support/InlineBackground.h"
#include "support/MemoryFiles.h"
#include "support/QtWait.h"
#include "ui/AnalyzerWindow.h"

namespace sonavex {

// The Analyzer on the stepped card, its window with texts of usual length.
class AnalyzerRig {
public:
    AnalyzerRig() = default;
    // A run ends while the window can still show it.
    ~AnalyzerRig() { form.Sweep.Close(); }
    AnalyzerRig(const AnalyzerRig&) = delete;
    AnalyzerRig& operator=(const AnalyzerRig&) = delete;

    // Opens the window and fills its texts, then `change` changes them.
    void Open(QSize size, const std::function<void(frmAnalyzer&)>& change = {});
    // Starts the card as a loop with distortion, of 24 bits at 48 kHz, and opens the window without texts.
    void OpenOnCard(QSize size, const DeviceUnderTestModel& model = UsualLoop());
    // Opens a recording in the open window. Samples beyond full scale are clipped.
    void OpenRecording(const std::function<double(std::int64_t frame)>& sample, int channels = 2);
    // A sine that clips, and one with sidebands at -60 dBc, 3 Hz off.
    static double ClippingSine(std::int64_t frame);
    static double UnsteadySine(std::int64_t frame);
    // Of both directions, at 48 kHz.
    void Calibrate();
    // The card's sound and the time of the event loop pass.
    void Play(std::chrono::milliseconds time);
    static DeviceUnderTestModel UsualLoop();
    template <class Widget>
    Widget& Find(const char* name) {
        auto* widget = window.findChild<Widget*>(name);
        if (widget == nullptr) throw std::runtime_error(name);
        return *widget;
    }

    FormRig rig;
    InlineBackground background{rig.loop};
    HandlerGuard guard{rig.dialogs, rig.errorLog, rig.ending};
    MemoryFiles files;
    HistoryInMemory stored{background};
    frmAnalyzer form{AnalyzerNeeds(rig.form, rig.loop, background, rig.dialogs, files, stored.history)};
    ui::AnalyzerWindow window{form, guard};
};

}  // namespace sonavex
