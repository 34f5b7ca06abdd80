#pragma once

#include <QLabel>
#include <QMessageBox>
#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/DialogUser.h"

namespace sonavex {

// Answers the program's dialogs: closes the error dialog, confirms the selection of devices unchanged,
// confirms messages. Records their texts, and measures how long the window was frozen.
class Attendant {
public:
    Attendant() {
        user_.OnLook = [this] { NoteTurn(); };
    }

    // Texts of the error dialogs, in order.
    std::vector<std::string> Errors;
    // Texts of message boxes.
    std::vector<std::string> Messages;
    int Selections = 0;
    // Called while the error dialog is open.
    std::function<void()> OnError;
    // Called while the selection of devices is open, before it is confirmed.
    std::function<void(QDialog&)> OnSelection;

    // Longest time without a turn of the event loop since the last call.
    std::chrono::milliseconds LongestFreeze() {
        NoteTurn();
        return std::exchange(longest_, std::chrono::milliseconds(0));
    }

private:
    using Clock = std::chrono::steady_clock;

    void NoteTurn() {
        const auto now = Clock::now();
        longest_ = std::max(longest_, std::chrono::duration_cast<std::chrono::milliseconds>(now - turn_));
        turn_ = now;
    }
    void Answer(QDialog& dialog) {
        if (auto* const box = qobject_cast<QMessageBox*>(&dialog)) {
            Messages.push_back(box->text().toStdString());
            box->accept();
        } else if (dialog.windowTitle() == QStringLiteral("Sound Device Error")) {
            Errors.push_back(Find<QLabel>(dialog, "lblMessage").text().toStdString());
            if (OnError) OnError();
            Click(dialog, "closeButton");
        } else {
            ++Selections;
            if (OnSelection) OnSelection(dialog);
            Click(dialog, "cmdOkay");
        }
    }
    Clock::time_point turn_ = Clock::now();
    std::chrono::milliseconds longest_{0};
    DialogUser user_{[this](QDialog& dialog) { Answer(dialog); }};
};

}  // namespace sonavex
