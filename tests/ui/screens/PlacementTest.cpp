// Where the forms open. The display gives every window a frame, which is known only when the window is shown.

#include <gmock/gmock.h>

#include <QApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "support/DialogRig.h"
#include "support/FormRig.h"
#include "ui/DeviceDialog.h"
#include "ui/MainWindow.h"
#include "ui/MixerRig.h"

namespace sonavex {
namespace {

// The primary screen is not at the origin of the screens.
constexpr QPoint kOrigin(1000, 200);
constexpr ScreenArea kScreens{1600, 1000, 1600, 1000};

// A form with a stored position, and its window.
class PlacedForm {
public:
    virtual ~PlacedForm() = default;
    virtual SettingsStore& Store() = 0;
    virtual Window& Frame() = 0;
    virtual QWidget& Widget() = 0;
    virtual void Open() = 0;

    void StorePlace(const std::string& left, const std::string& top) {
        Store().Save("Windows", Frame().Name() + " Left", left);
        Store().Save("Windows", Frame().Name() + " Top", top);
    }
    std::string StoredPlace() {
        return Store().Get("Windows", Frame().Name() + " Left", "") + ", " +
               Store().Get("Windows", Frame().Name() + " Top", "");
    }
};

class PlacedMain : public PlacedForm {
public:
    PlacedMain() { rig_.desktop.screens = kScreens; }
    SettingsStore& Store() override { return rig_.store; }
    Window& Frame() override { return rig_.form.Frame; }
    QWidget& Widget() override { return window_; }
    void Open() override {
        window_.ReportSize();
        rig_.form.Form_Load();
        window_.ShowPlaced();
    }

private:
    FormRig rig_;
    ui::MainWindow window_{rig_.form, {}};
};

class PlacedDevices : public PlacedForm {
public:
    PlacedDevices() {
        rig_.desktop.screens = kScreens;
        rig_.form.Form_Load();
    }
    SettingsStore& Store() override { return rig_.store; }
    Window& Frame() override { return form_.Frame; }
    QWidget& Widget() override { return *dialog_; }
    void Open() override {
        dialog_.emplace(form_, rig_.form.Guard);
        dialog_->show();
    }

private:
    DialogRig rig_;
    frmDevices form_{rig_.form.DevicesNeeds(rig_.files, rig_.help), rig_.form.DevicesLabels()};
    std::optional<ui::DeviceDialog> dialog_;
};

class PlacedMixer : public PlacedForm {
public:
    explicit PlacedMixer(std::int32_t osMajorVersion) : older_(osMajorVersion < 6), rig_(osMajorVersion) {
        rig_.desktop.screens = kScreens;
    }
    SettingsStore& Store() override { return rig_.store; }
    Window& Frame() override { return older_ ? rig_.mixers.Sound.Frame : rig_.mixers.SoundVista.Frame; }
    QWidget& Widget() override {
        return older_ ? static_cast<QWidget&>(rig_.windows.Sound) : rig_.windows.SoundVista;
    }
    void Open() override { rig_.mixers.ShowSoundCard(); }

private:
    bool older_;
    MixerRig rig_;
};

struct FormKind {
    const char* name;
    std::function<std::unique_ptr<PlacedForm>()> make;
};

void Settle() {
    for (int i = 0; i < 3; ++i) QApplication::processEvents();
}

// Shows every window at its own place.
class WindowManager : public QObject {
public:
    static constexpr QPoint kPlace{1110, 260};

    WindowManager() { qApp->installEventFilter(this); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* const window = qobject_cast<QWidget*>(watched);
        if (event->type() == QEvent::PlatformSurface && window != nullptr && window->isWindow())
            window->move(kPlace);
        return QObject::eventFilter(watched, event);
    }
};

class Placing : public testing::TestWithParam<FormKind> {
protected:
    QWidget& Open() {
        form_->Open();
        Settle();
        EXPECT_NE(form_->Widget().frameGeometry(), form_->Widget().geometry()) << "no frame";
        return form_->Widget();
    }
    QWidget& OpenAt(const char* left, const char* top) {
        form_->StorePlace(left, top);
        return Open();
    }
    std::string PlaceStoredOnClosing() {
        form_->Widget().close();
        return form_->StoredPlace();
    }

    std::unique_ptr<PlacedForm> form_ = GetParam().make();
};

TEST_P(Placing, IsRelativeToThePrimaryScreen) {
    EXPECT_EQ(OpenAt("-700", "-150").pos(), kOrigin + QPoint(-700, -150));
    EXPECT_EQ(PlaceStoredOnClosing(), "-700, -150");
}

TEST_P(Placing, FollowsTheUser) {
    OpenAt("100", "50").move(280, 120);
    Settle();
    const std::string stored = PlaceStoredOnClosing();
    EXPECT_EQ(stored, "-720, -80");
    form_ = GetParam().make();
    EXPECT_EQ(OpenAt("-720", "-80").pos(), QPoint(280, 120));
}

TEST_P(Placing, WhereNoScreenShowsTheFormIsTheMiddleButNotStored) {
    QWidget& widget = OpenAt("-20000", "-300");
    EXPECT_EQ(widget.pos(),
              QGuiApplication::primaryScreen()->availableGeometry().center() - widget.rect().center());
    EXPECT_EQ(PlaceStoredOnClosing(), "-20000, -300");
}

TEST_P(Placing, WhereNoScreenShowedTheFormIsStoredWhenTheUserMovesIt) {
    OpenAt("-20000", "-300").move(1100, 250);
    Settle();
    EXPECT_EQ(PlaceStoredOnClosing(), "100, 50");
}

TEST_P(Placing, KeepsTheFrameOnTheScreensButDoesNotStoreThat) {
    const QWidget& widget = OpenAt("30000", "30000");
    EXPECT_EQ(widget.frameGeometry().bottomRight(), QPoint(2599, 1199));
    const std::string withoutFrame =
        std::to_string(1600 - widget.width()) + ", " + std::to_string(1000 - widget.height());
    EXPECT_EQ(PlaceStoredOnClosing(), withoutFrame);
}

TEST_P(Placing, FollowsTheUserAfterRoomWasMadeForTheFrame) {
    OpenAt("30000", "30000").move(1100, 250);
    Settle();
    EXPECT_EQ(PlaceStoredOnClosing(), "100, 50");
}

// As a window manager may do while the window appears.
TEST_P(Placing, WhereTheDisplayShowsTheFormIsNotStored) {
    const WindowManager manager;
    EXPECT_EQ(OpenAt("100", "50").geometry().topLeft(), WindowManager::kPlace);
    EXPECT_EQ(PlaceStoredOnClosing(), "100, 50");
}

// Modal forms and the main form open once in the life of their window.
using PlacingAgain = Placing;

TEST_P(PlacingAgain, IsWhereTheUserLeftTheForm) {
    OpenAt("100", "50").move(280, 120);
    Settle();
    EXPECT_EQ(PlaceStoredOnClosing(), "-720, -80");
    EXPECT_EQ(Open().pos(), QPoint(280, 120));
    EXPECT_EQ(PlaceStoredOnClosing(), "-720, -80");
    Open().move(1100, 250);
    Settle();
    EXPECT_EQ(PlaceStoredOnClosing(), "100, 50");
}

// The size of the frame is known from the first time.
TEST_P(PlacingAgain, KeepsTheFrameOnTheScreens) {
    const QSize frame = OpenAt("30000", "30000").frameGeometry().size();
    PlaceStoredOnClosing();
    EXPECT_EQ(Open().frameGeometry().bottomRight(), QPoint(2599, 1199));
    const std::string withFrame =
        std::to_string(1600 - frame.width()) + ", " + std::to_string(1000 - frame.height());
    EXPECT_EQ(PlaceStoredOnClosing(), withFrame);
    Open();
    EXPECT_EQ(PlaceStoredOnClosing(), withFrame);
}

TEST_P(PlacingAgain, WhereNoScreenShowsTheFormIsTheMiddleButNotStored) {
    OpenAt("-20000", "-300");
    PlaceStoredOnClosing();
    EXPECT_EQ(Open().frameGeometry().center(),
              QGuiApplication::primaryScreen()->availableGeometry().center());
    EXPECT_EQ(PlaceStoredOnClosing(), "-20000, -300");
}

// As a window manager may do while it puts a frame around the window.
TEST_P(PlacingAgain, ThroughOtherPlacesIsNotStored) {
    OpenAt("-20000", "-300");
    PlaceStoredOnClosing();
    QWidget& widget = Open();
    const QPoint place = widget.pos();
    widget.move(-1, -20);
    Settle();
    widget.move(place);
    Settle();
    EXPECT_EQ(PlaceStoredOnClosing(), "-20000, -300");
}

TEST_P(Placing, CountsTheFrameAsPartOfTheForm) {
    const QWidget& widget = Open();
    EXPECT_EQ(form_->Frame().Width(), widget.frameGeometry().width());
    EXPECT_EQ(form_->Frame().Height(), widget.frameGeometry().height());
}

template <class Form>
std::unique_ptr<PlacedForm> Make() {
    return std::make_unique<Form>();
}

const FormKind kMixers[] = {{"OlderMixer", [] { return std::make_unique<PlacedMixer>(5); }},
                            {"NewerMixer", [] { return std::make_unique<PlacedMixer>(10); }}};

std::string NameOf(const testing::TestParamInfo<FormKind>& kind) {
    return kind.param.name;
}

INSTANTIATE_TEST_SUITE_P(Of, PlacingAgain, testing::ValuesIn(kMixers), NameOf);
INSTANTIATE_TEST_SUITE_P(Of, Placing,
                         testing::Values(FormKind{"MainForm", Make<PlacedMain>},
                                         FormKind{"DeviceSelection", Make<PlacedDevices>}, kMixers[0],
                                         kMixers[1]),
                         NameOf);

}  // namespace
}  // namespace sonavex
