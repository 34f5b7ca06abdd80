#include <gmock/gmock.h>

#include <QAction>
#include <QLineEdit>
#include <QTabWidget>
#include <QTest>
#include <string>
#include <utility>
#include <vector>

#include "ui/WindowRig.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

using MenuActions = WindowRig;

TEST_F(MenuActions, EachPressesItsOwnEntry) {
    MenuControls& menus = rig.form.Menus;
    const std::vector<std::pair<std::string, MenuItem*>> entries{
        {"mnuAbout", &menus.mnuAbout},
        {"mnuHelpContents", &menus.mnuHelpContents},
        {"mnuCheckVersion", &menus.mnuCheckVersion},
        {"mnuemail", &menus.mnuemail},
        {"mnuInputControl", &menus.mnuInputControl},
        {"mnuPlayControl", &menus.mnuPlayControl},
        {"mnuAnalyzer", &menus.mnuAnalyzer},
        {"mnuOpenRecording", &menus.mnuOpenRecording},
        {"mnuPrint", &rig.form.mnuPrint},
    };
    std::vector<std::string> pressed;
    for (const auto& entry : entries) {
        const std::string name = entry.first;
        entry.second->Click.Handle([&pressed, name] { pressed.push_back(name); });
    }
    rig.form.mnuPrint.SetEnabled(true);
    Settle();
    for (const auto& entry : entries) {
        auto* const action = window.findChild<QAction*>(QString::fromStdString(entry.first));
        ASSERT_NE(action, nullptr) << entry.first;
        pressed.clear();
        action->trigger();
        EXPECT_THAT(pressed, ElementsAre(entry.first));
    }
    for (const auto& entry : entries) entry.second->Click.Handle({});
}

TEST_F(MenuActions, TheKeyboardGoesFromTabToTab) {
    auto& tabs = Find<QTabWidget>("TabStrip1");
    ASSERT_EQ(tabs.currentIndex(), 0);
    QTest::keyClick(&Find<QLineEdit>("txtFreq"), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(tabs.currentIndex(), 1);
    QTest::keyClick(&tabs, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(tabs.currentIndex(), 0);
}

}  // namespace
}  // namespace sonavex
