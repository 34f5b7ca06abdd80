#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/history/History.h"
#include "core/ports/Help.h"
#include "core/ports/HistoryFiles.h"
#include "core/precise/display/frmAnalyzer.h"
#include "core/report/HandlerGuard.h"
#include "core/report/PrintCommand.h"
#include "core/shell/frmMain.h"
#include "platform/plain/WorkerThread.h"
#include "platform/sndfile/SndfileFiles.h"
#include "ui/AnalyzerWindow.h"

namespace sonavex::app {

// The Analyzer with its window, files and background thread.
class ProgramAnalyzer {
public:
    // All referenced objects must outlive this object.
    struct Needs {
        frmMain& main;
        EventLoop& loop;
        Dialogs& dialogs;
        ErrorLog& errorLog;
        Ending& ending;
        Help& help;
        PrintCommand& print;
        bool simulated = false;
        std::string version;
    };

    // Handles the menu entries of the main form from now on.
    explicit ProgramAnalyzer(const Needs& needs);
    ProgramAnalyzer(const ProgramAnalyzer&) = delete;
    ProgramAnalyzer& operator=(const ProgramAnalyzer&) = delete;

    // Opens the window if it was open when the program ended.
    void Reopen();
    // Call at the begin of the shutdown. Waits, a second at most, for the ramp that ends a stimulus.
    void Close();

    frmAnalyzer& Form() noexcept { return form_; }
    ui::AnalyzerWindow& Window() noexcept { return window_; }

private:
    void WaitForRamp();

    EventLoop& loop_;
    WorkerThread background_;
    SndfileFiles files_;
    // Without OnMessageOpen: a message of the Analyzer holds no notifications of the block meter.
    HandlerGuard guard_;
    std::unique_ptr<HistoryFiles> historyFiles_;
    // A disk that answers late must not delay the analysis.
    WorkerThread historyBackground_;
    History history_;
    frmAnalyzer form_;
    ui::AnalyzerWindow window_;
};

}  // namespace sonavex::app
