#include <gtest/gtest.h>

#include <QEvent>
#include <QLabel>
#include <QPushButton>

#include "support/QtWait.h"
#include "support/World.h"
#include "ui/Binder.h"

namespace sonavex {
namespace {

class LabelWithEnabledEvent : public QLabel {
public:
    using QLabel::QLabel;
    std::function<void()> OnEnabledChange;

protected:
    void changeEvent(QEvent* event) override {
        QLabel::changeEvent(event);
        if (event->type() == QEvent::EnabledChange && OnEnabledChange) OnEnabledChange();
    }
};

TEST(Binder, ShowsEveryChangeWhenAFlushRunsInsideAnother) {
    World world;
    HandlerGuard guard(world.dialogs, world.errorLog, world.ending);
    QWidget parent;
    ui::Binder binder(guard, {});
    LabelWithEnabledEvent first(&parent);
    QLabel second(&parent);
    Label firstControl;
    Label secondControl;
    binder.Bind(first, firstControl);
    binder.Bind(second, secondControl);
    int inner = 0;
    first.OnEnabledChange = [&] {
        ++inner;
        binder.Flush();
    };
    firstControl.SetEnabled(false);
    secondControl.SetCaption("shown");
    binder.Flush();
    EXPECT_EQ(inner, 1);
    EXPECT_EQ(second.text(), "shown");
}

TEST(Binder, ShowsChangesByTheCoreAtMostOnceInItsInterval) {
    World world;
    HandlerGuard guard(world.dialogs, world.errorLog, world.ending);
    Label control;
    CommandButton button;
    QLabel label;
    QPushButton pressed;
    int flushes = 0;
    ui::Binder binder(guard, [&flushes] { ++flushes; });
    binder.Bind(label, control);
    binder.Bind(pressed, button);
    binder.SetInterval(std::chrono::hours(1));
    binder.Flush();
    control.SetCaption("reading");
    WaitInQt(std::chrono::milliseconds(50));
    EXPECT_EQ(label.text(), "");
    EXPECT_EQ(flushes, 1);
    pressed.click();
    Settle();
    EXPECT_EQ(label.text(), "reading");
    EXPECT_EQ(flushes, 2);
    binder.SetInterval(std::chrono::milliseconds(1));
    control.SetCaption("next");
    EXPECT_TRUE(WaitInQt(std::chrono::seconds(5), [&] { return label.text() == "next"; }));
}

}  // namespace
}  // namespace sonavex
