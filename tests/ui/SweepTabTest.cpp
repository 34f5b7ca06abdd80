#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCheckBox>
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
        return std::nullopt;
    };
    QTest::keyClick(&window, Qt::Key_F5);
    PlayToTheEnd();
    QTest::keyClick(&window, Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(asked, "run");
}

TEST_F(SweepTab, KeepsRunsByKAndRenamesThem) {
    QTest::keyClick(&window, Qt::Key_F5);
    PlayToTheEnd();
    Find<ui::RunView>("Run").setFocus();
    QTest::keyClick(&window, Qt::Key_K);
    Settle();
    auto& name = Find<QLineEdit>("txtKept1");
    ASSERT_TRUE(name.isVisible());
    EXPECT_FALSE(Find<QLineEdit>("txtKept2").isVisible());
    EXPECT_EQ(name.text(), "10:42, -1 dBFS");
    QTest::mouseClick(&Find<QPushButton>("cmdRenameRun"), Qt::LeftButton);
    Settle();
    EXPECT_TRUE(name.hasFocus());
    Type("txtKept1", "new caps");
    EXPECT_EQ(form.Sweep.Kept.Rows[0].txtName.Text(), "new caps");
    Settle();
    EXPECT_EQ(name.toolTip(), "new caps");
    auto& swatch = Find<QWidget>("KeptSwatch1");
    EXPECT_TRUE(swatch.isVisible());
    QTest::mouseClick(&Find<QCheckBox>("chkKept1"), Qt::LeftButton);
    Settle();
    EXPECT_FALSE(swatch.isVisible()) << "the plot does not show the run";
}

TEST_F(SweepTab, KeysOfTheSpectrumDoNotActThere) {
    const PlotView view = form.Spectrum.View();
    Find<ui::RunView>("Run").setFocus();
    for (const auto key : {Qt::Key_U, Qt::Key_Plus, Qt::Key_Minus, Qt::Key_H}) QTest::keyClick(&window, key);
    Settle();
    EXPECT_TRUE(form.Spectrum.View() == view);
    EXPECT_EQ(form.cmdHold.Caption(), "Hold");
}

}  // namespace
}  // namespace sonavex
