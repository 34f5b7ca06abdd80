#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>
#include <string>

#include "support/FormRig.h"
#include "support/InlineBackground.h"
#include "support/MemoryFiles.h"
#include "support/QtWait.h"
#include "ui/AnalyzerWindow.h"

namespace sonavex {

// The Analyzer on the stepped card, its window with texts of usual length.
class AnalyzerRig : public testing::Test {
protected:
    // Opens the window and fills its texts, then `change` changes them.
    void Open(QSize size, const std::function<void(frmAnalyzer&)>& change = {});
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
    frmAnalyzer form{NeedsOn(rig, background, files)};
    ui::AnalyzerWindow window{form, guard};

    static frmAnalyzer::Needs NeedsOn(FormRig& rig, Background& background, const MeasurementFiles& files);
};

}  // namespace sonavex
