#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QPushButton>
#include <QTabWidget>
#include <QTest>

#include "ui/AnalyzerRig.h"
#include "ui/widgets/RunView.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

class SweepTab : public testing::Test, public AnalyzerRig {
protected:
    SweepTab() {
        OpenOnCard({1240, 800});
        QTest::keyClick(&window, Qt::Key_2, Qt::ControlModifier);
        Type("txtFrom", "500");
        Type("txtTo", "2k");
        Type("txtAmount", "1");
        Settle();
    }
    void Type(const char* name, const char* text) {
        auto& entry = Find<QLineEdit>(name);
        entry.setFocus();
        entry.selectAll();
        QTest::keyClicks(&entry, text);
        QTest::keyClick(&entry, Qt::Key_Return);
    }
    void PlayToTheEnd() {
        for (auto passed = 0ms; passed < 60s && form.Sweep.Active(); passed += 100ms) Play(100ms);
        Settle();
    }
};

TEST_F(SweepTab, RunsByF5AndShowsTheResult) {
    EXPECT_EQ(Find<QTabWidget>("Tabs").currentWidget()->objectName(), "sweepPage");
    EXPECT_TRUE(Find<QLabel>("lblPlan").text().startsWith("3 points"));
    QTest::keyClick(&window, Qt::Key_F5);
    Settle();
    ASSERT_TRUE(form.Sweep.Active());
    EXPECT_EQ(Find<QPushButton>("cmdSweep").text(), "Cancel");
    EXPECT_FALSE(Find<QLineEdit>("txtFrom").isEnabled());
    PlayToTheEnd();
    EXPECT_TRUE(Find<QLabel>("lblProgress").text().startsWith("3 points in "));
    auto& view = Find<ui::RunView>("Run");
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_Right);
    Settle();
    EXPECT_EQ(Find<QLabel>("lblAt").text(), "At 500 Hz");
}

TEST_F(SweepTab, EscapeCancelsTheRun) {
    QTest::keyClick(&window, Qt::Key_F5);
    Play(1000ms);
    Find<ui::RunView>("Run").setFocus();
    QTest::keyClick(&window, Qt::Key_Escape);
    Play(1000ms);
    EXPECT_FALSE(form.Sweep.Active());
    EXPECT_TRUE(window.isVisible());
}

TEST_F(SweepTab, ExportsTheRunAndNotTheReading) {
    std::string asked;
    form.AskForExport = [&](const ExportedMeasurement&) {
        asked += "reading";
        return std::nullopt;
    };
    form.Sweep.AskForExport = [&] {
        asked += "run";
        return std::string();
    };
    QTest::keyClick(&window, Qt::Key_F5);
    PlayToTheEnd();
    QTest::keyClick(&window, Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(asked, "run");
}

}  // namespace
}  // namespace sonavex
