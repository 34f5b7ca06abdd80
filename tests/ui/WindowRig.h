#pragma once

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <stdexcept>

#include "support/FormRig.h"
#include "support/QtWait.h"
#include "ui/MainWindow.h"

namespace sonavex {

// The real window and form on the stepped card.
class WindowRig : public testing::Test {
protected:
    void SetUp() override {
        rig.form.Form_Load();
        window.ShowPlaced();
        Settle();
    }
    void Step(int blocks) {
        rig.Step(blocks);
        Settle();
    }
    template <class Widget>
    Widget& Find(const char* name) {
        auto* widget = window.findChild<Widget*>(name);
        if (widget == nullptr) throw std::runtime_error(name);
        return *widget;
    }
    QString Text(const char* label) { return Find<QLabel>(label).text(); }

    FormRig rig;
    ui::MainWindow window{rig.form, QStringLiteral("Simulated sound card")};
};

}  // namespace sonavex
