#pragma once

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace sonavex {

// A user who answers what the program shows: closes the error dialog, leaves the selection of devices
// as it is, confirms messages. Keeps what was shown, and measures how long the window stood still.
class Attendant {
public:
    Attendant() { Arm(); }

    // Texts of the error dialogs, in their order.
    std::vector<std::string> Errors;
    // Texts of message boxes.
    std::vector<std::string> Messages;
    int Selections = 0;
    // What happens while the error dialog is open.
    std::function<void()> OnError;
    // What happens while the selection of devices is open, before it is confirmed.
    std::function<void(QDialog&)> OnSelection;

    // The longest time without a turn of the event loop since the last call.
    std::chrono::milliseconds LongestStandstill() {
        NoteTurn();
        return std::exchange(longest_, std::chrono::milliseconds(0));
    }

private:
    static constexpr int kLookMs = 5;
    using Clock = std::chrono::steady_clock;

    // Anew each time: an answer may open the next dialog and return only when that has closed.
    void Arm() {
        QTimer::singleShot(kLookMs, &context_, [this] {
            Arm();
            NoteTurn();
            Answer();
        });
    }
    void NoteTurn() {
        const auto now = Clock::now();
        longest_ = std::max(longest_, std::chrono::duration_cast<std::chrono::milliseconds>(now - turn_));
        turn_ = now;
    }
    void Answer() {
        auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || !dialog->isVisible() || dialog == answering_) return;
        const QPointer<QDialog> outer = std::exchange(answering_, dialog);
        Answer(*dialog);
        answering_ = outer;
    }
    void Answer(QDialog& shown) {
        QDialog* const dialog = &shown;
        if (auto* const box = qobject_cast<QMessageBox*>(dialog)) {
            Messages.push_back(box->text().toStdString());
            box->accept();
        } else if (dialog->windowTitle() == QStringLiteral("Sound Device Error")) {
            Errors.push_back(dialog->findChild<QLabel*>(QStringLiteral("lblMessage"))->text().toStdString());
            if (OnError) OnError();
            Press(*dialog, "closeButton");
        } else {
            ++Selections;
            if (OnSelection) OnSelection(*dialog);
            Press(*dialog, "cmdOkay");
        }
    }
    static void Press(QDialog& dialog, const char* button) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(QLatin1String(button)), Qt::LeftButton);
    }

    QObject context_;
    QPointer<QDialog> answering_;
    Clock::time_point turn_ = Clock::now();
    std::chrono::milliseconds longest_{0};
};

}  // namespace sonavex
