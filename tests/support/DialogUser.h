#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <chrono>
#include <functional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace sonavex {

// Answers the modal dialogs that open while it exists.
class DialogUser {
public:
    using Answer = std::function<void(QDialog&)>;

    // The answer is called every few milliseconds for the dialog in front, except during a call for the same
    // dialog. An answer may open another dialog and return only when that has closed.
    explicit DialogUser(Answer answer) : answer_(std::move(answer)) { Arm(); }

    DialogUser(const DialogUser&) = delete;
    DialogUser& operator=(const DialogUser&) = delete;

    // Called every few milliseconds, with or without an open dialog.
    std::function<void()> OnLook;

private:
    // A repeating timer would not run inside its own handler, which may have opened a dialog.
    void Arm() {
        QTimer::singleShot(2, &context_, [this] {
            Arm();
            if (OnLook) OnLook();
            Look();
        });
    }
    void Look() {
        auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || !dialog->isVisible() || dialog == answering_) return;
        const QPointer<QDialog> outer = std::exchange(answering_, dialog);
        answer_(*dialog);
        answering_ = outer;
    }

    Answer answer_;
    QPointer<QDialog> answering_;
    QObject context_;
};

// One answer per dialog that opens, or that comes to the front again after another one has closed. All
// answers are expected to be used. A dialog that is still open after 10 s fails the test and is closed.
class DialogSteps {
public:
    explicit DialogSteps(std::vector<DialogUser::Answer> steps) : steps_(std::move(steps)) {}
    ~DialogSteps() { EXPECT_EQ(done_, steps_.size()); }
    DialogSteps(const DialogSteps&) = delete;
    DialogSteps& operator=(const DialogSteps&) = delete;

private:
    void Take(QDialog& dialog) {
        if (&dialog != last_ && done_ < steps_.size()) {
            last_ = &dialog;
            steps_[done_++](dialog);
        } else if (std::chrono::steady_clock::now() >= end_) {
            ADD_FAILURE() << "a dialog stays open: " << dialog.windowTitle().toStdString();
            dialog.done(0);
        }
    }

    std::vector<DialogUser::Answer> steps_;
    std::size_t done_ = 0;
    QPointer<QDialog> last_;
    std::chrono::steady_clock::time_point end_ = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    DialogUser user_{[this](QDialog& dialog) { Take(dialog); }};
};

template <class Widget>
Widget& Find(QWidget& window, const char* name) {
    auto* widget = window.findChild<Widget*>(name);
    if (widget == nullptr) throw std::runtime_error(name);
    return *widget;
}

inline void Click(QWidget& window, const char* button) {
    QTest::mouseClick(&Find<QPushButton>(window, button), Qt::LeftButton);
}

}  // namespace sonavex
