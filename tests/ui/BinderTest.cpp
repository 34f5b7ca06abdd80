#include <gtest/gtest.h>

#include <QEvent>
#include <QLabel>

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

}  // namespace
}  // namespace sonavex
