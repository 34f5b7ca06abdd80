#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <chrono>
#include <functional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace sonavex {

// What to do with one dialog after the other as they open; each step has to close its dialog, or to open
// the next.
class DialogDriver {
public:
    explicit DialogDriver(std::vector<std::function<void(QDialog&)>> steps) : steps_(std::move(steps)) {
        Arm();
    }
    ~DialogDriver() { EXPECT_EQ(done_, steps_.size()); }
    DialogDriver(const DialogDriver&) = delete;
    DialogDriver& operator=(const DialogDriver&) = delete;

private:
    // Anew each time: a step may open a dialog of its own and return only when that has closed.
    void Arm() {
        QTimer::singleShot(2, &context_, [this] {
            Arm();
            Look();
        });
    }
    void Look() {
        auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || !dialog->isVisible()) return;
        if (dialog != last_ && done_ < steps_.size()) {
            last_ = dialog;
            steps_[done_++](*dialog);
            return;
        }
        if (std::chrono::steady_clock::now() < end_) return;
        ADD_FAILURE() << "a dialog stays open: " << dialog->windowTitle().toStdString();
        dialog->done(0);
    }

    std::vector<std::function<void(QDialog&)>> steps_;
    std::size_t done_ = 0;
    QDialog* last_ = nullptr;
    QObject context_;
    std::chrono::steady_clock::time_point end_ = std::chrono::steady_clock::now() + std::chrono::seconds(10);
};

template <class Widget>
Widget& Find(QDialog& dialog, const char* name) {
    auto* widget = dialog.findChild<Widget*>(name);
    if (widget == nullptr) throw std::runtime_error(name);
    return *widget;
}

inline void Click(QDialog& dialog, const char* button) {
    QTest::mouseClick(&Find<QPushButton>(dialog, button), Qt::LeftButton);
}

}  // namespace sonavex
