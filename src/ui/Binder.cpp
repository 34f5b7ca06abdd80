#include "ui/Binder.h"

#include <QSignalBlocker>
#include <algorithm>
#include <utility>

#include "ui/widgets/ChevronButton.h"

namespace sonavex::ui {
namespace {

QString Text(const std::string& text) {
    return QString::fromStdString(text);
}

QColor ColourOf(const Colour& colour) {
    return {colour.red, colour.green, colour.blue};
}

// Sets the button's text to the caption, or keeps the text of the .ui file if the caption is empty.
void ShowCaption(QPushButton& button, const std::string& caption) {
    if (!caption.empty()) button.setText(Text(caption));
}

// A widget on a hidden tab cannot take the focus.
void GiveFocus(QWidget& widget) {
    for (QWidget* parent = widget.parentWidget(); parent != nullptr; parent = parent->parentWidget()) {
        auto* tabs = qobject_cast<QTabWidget*>(parent);
        for (int i = 0; tabs != nullptr && i < tabs->count(); ++i)
            if (tabs->widget(i)->isAncestorOf(&widget)) tabs->setCurrentIndex(i);
    }
    widget.setFocus();
}

}  // namespace

Binder::Binder(HandlerGuard& guard, std::function<void()> afterFlush, QObject* parent)
    : QObject(parent), guard_(guard), afterFlush_(std::move(afterFlush)) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.callOnTimeout([this] { Flush(); });
}

void Binder::Add(QObject& widget, Control& control, std::function<void()> show) {
    entries_.push_back({&widget, &control, std::move(show), false});
    control.OnDirty = [this] { Schedule(interval_); };
    entries_.back().show();
    control.Clean();
}

// Never in the event itself, which may change more.
void Binder::Schedule(std::chrono::milliseconds interval) {
    const auto passed = std::chrono::milliseconds(sinceFlush_.isValid() ? sinceFlush_.elapsed() : 0);
    const auto wait = std::max(interval - passed, std::chrono::milliseconds::zero());
    if (!timer_.isActive() || timer_.remainingTimeAsDuration() > wait) timer_.start(wait);
}

// Two widgets may show the same control. Controls are cleaned before anything is shown, because a widget that
// loses the focus then completes its entry, and the changes by that are shown by the next flush. A flush
// inside this one shows what this one has not shown yet.
void Binder::Flush() {
    timer_.stop();
    sinceFlush_.start();
    for (Entry& entry : entries_) entry.due = entry.due || entry.control->Dirty();
    for (Entry& entry : entries_) entry.control->Clean();
    for (Entry& entry : entries_) {
        if (!std::exchange(entry.due, false)) continue;
        const QSignalBlocker blocker(entry.widget);
        entry.show();
    }
    if (afterFlush_) afterFlush_();
}

void Binder::Handle(const std::function<void()>& handler) {
    CompleteEntries();
    guard_.Run(handler);
    Schedule(std::chrono::milliseconds::zero());
}

void Binder::CompleteEntries() {
    for (TextEntry* entry : texts_) entry->Complete(guard_);
}

// A handle that the user grabs must not move away first, so pressing it does not show the entries.
void Binder::ShowEntriesBeforeSteps(NotchSlider& slider) {
    connect(&slider, &NotchSlider::AboutToStep, this, [this] {
        CompleteEntries();
        FlushPending();
    });
}

std::vector<Binder::Pair> Binder::Pairs() const {
    std::vector<Pair> pairs;
    for (const Entry& entry : entries_) pairs.push_back({entry.widget, entry.control});
    return pairs;
}

// Texts of the core use carriage returns as line breaks.
void Binder::ShowLabel(QLabel& widget, const Label& control) {
    widget.setText(Text(control.Caption()).replace(u'\r', u'\n'));
    widget.setEnabled(control.Enabled());
    if (widget.isHidden() == control.Visible()) widget.setVisible(control.Visible());
}

void Binder::Bind(QLabel& widget, Label& control) {
    Add(widget, control, [&widget, &control] { ShowLabel(widget, control); });
}

void Binder::Bind(QLineEdit& widget, TextBox& control) {
    auto* const entry = new TextEntry(widget, control, this);
    texts_.push_back(entry);
    Add(widget, control, [&widget, &control, entry] {
        entry->Show();
        widget.setEnabled(control.Enabled());
        if (control.TakeFocusRequest()) GiveFocus(widget);
    });
    connect(entry, &TextEntry::Finished, this, &Binder::CompleteEntries);
}

void Binder::Bind(QSlider& widget, Slider& control) {
    Add(widget, control, [&widget, &control] {
        widget.setRange(control.Min(), control.Max());
        if (!widget.isSliderDown()) widget.setValue(control.Value());
        widget.setEnabled(control.Enabled());
    });
    if (auto* const stepped = qobject_cast<NotchSlider*>(&widget)) ShowEntriesBeforeSteps(*stepped);
    connect(&widget, &QSlider::valueChanged, this, [this, &widget, &control](int value) {
        Handle([&] { control.UserMoves(value); });
        if (!widget.isSliderDown()) Handle([&] { control.UserReleases(); });
    });
    // While the user held the slider, it did not show changes by the handler.
    connect(&widget, &QSlider::sliderReleased, this, [this, &widget, &control] {
        Handle([&] { control.UserReleases(); });
        const QSignalBlocker blocker(&widget);
        widget.setValue(control.Value());
    });
}

void Binder::Bind(FrequencySlider& widget, Slider& control) {
    Add(widget, control, [&widget, &control] {
        widget.SetLimits(control.Min(), control.Max());
        widget.SetHz(control.Value());
        widget.setEnabled(control.Enabled());
    });
    ShowEntriesBeforeSteps(widget);
    connect(&widget, &FrequencySlider::HzMoved, this,
            [this, &control](int hertz) { Handle([&] { control.UserMoves(hertz); }); });
    connect(&widget, &FrequencySlider::HzReleased, this,
            [this, &control] { Handle([&] { control.UserReleases(); }); });
}

void Binder::Bind(QCheckBox& widget, CheckBox& control) {
    Add(widget, control, [&widget, &control] {
        widget.setChecked(control.Checked());
        widget.setEnabled(control.Enabled());
    });
    connect(&widget, &QCheckBox::clicked, this,
            [this, &control](bool checked) { Handle([&] { control.UserSets(checked); }); });
}

void Binder::Bind(QRadioButton& widget, OptionButton& control) {
    Add(widget, control, [&widget, &control] {
        widget.setChecked(control.Value());
        widget.setEnabled(control.Enabled());
    });
    connect(&widget, &QRadioButton::clicked, this, [this, &widget, &control] {
        Handle([&] { control.UserSelects(); });
        const QSignalBlocker blocker(&widget);
        widget.setChecked(control.Value());
    });
}

void Binder::Bind(QPushButton& widget, CommandButton& control) {
    Add(widget, control, [&widget, &control] {
        ShowCaption(widget, control.Caption());
        widget.setEnabled(control.Enabled());
    });
    connect(&widget, &QPushButton::clicked, this, [this, &control] { Handle([&] { control.Press(); }); });
}

void Binder::Bind(ChevronButton& widget, Label& control) {
    Add(widget, control, [&widget, &control] { widget.setText(Text(control.Caption())); });
}

void Binder::Bind(QAction& widget, MenuItem& control) {
    Add(widget, control, [&widget, &control] { widget.setEnabled(control.Enabled()); });
    connect(&widget, &QAction::triggered, this, [this, &control] { Handle([&] { control.UserChooses(); }); });
}

void Binder::Bind(QTabWidget& widget, TabStrip& control) {
    Add(widget, control, [&widget, &control] { widget.setCurrentIndex(control.Index()); });
    connect(&widget, &QTabWidget::currentChanged, this, [this, &control](int index) {
        Handle([&] { control.UserSelects(static_cast<std::int16_t>(index)); });
    });
}

void Binder::Bind(QListWidget& widget, ListBox& control) {
    Add(widget, control, [&widget, &control] {
        while (widget.count() > control.Count()) delete widget.takeItem(widget.count() - 1);
        while (widget.count() < control.Count()) widget.addItem(QString());
        for (int i = 0; i < control.Count(); ++i) {
            widget.item(i)->setText(Text(control.List(i)));
            widget.item(i)->setSelected(control.Selected(i));
        }
        widget.setEnabled(control.Enabled() && !control.Locked());
    });
    connect(&widget, &QListWidget::itemSelectionChanged, this, [this, &widget, &control] {
        for (int i = 0; i < control.Count() && i < widget.count(); ++i) {
            const bool selected = widget.item(i)->isSelected();
            if (selected != control.Selected(i)) Handle([&] { control.UserSelects(i, selected); });
        }
    });
}

void Binder::Bind(QComboBox& widget, ComboBox& control) {
    Add(widget, control, [&widget, &control] {
        QStringList shown;
        QStringList wanted;
        for (int i = 0; i < widget.count(); ++i) shown.append(widget.itemText(i));
        for (const std::string& item : control.Items()) wanted.append(Text(item));
        if (shown != wanted) {
            widget.clear();
            widget.addItems(wanted);
        }
        widget.setCurrentIndex(control.ListIndex());
        widget.setEnabled(control.Enabled());
    });
    connect(&widget, &QComboBox::activated, this,
            [this, &control](int index) { Handle([&] { control.UserSelects(index); }); });
}

void Binder::Bind(WaveChoice& widget, ComboBox& control) {
    Add(widget, control, [&widget, &control] {
        QStringList names;
        for (const std::string& item : control.Items()) names.append(Text(item));
        widget.SetNames(names);
        widget.SetIndex(control.ListIndex());
        widget.setEnabled(control.Enabled());
    });
    connect(&widget, &WaveChoice::Chosen, this,
            [this, &control](int index) { Handle([&] { control.UserSelects(index); }); });
}

void Binder::Bind(LevelBar& widget, ProgressBar& control) {
    Add(widget, control, [&widget, &control] {
        widget.SetLevel(static_cast<double>(control.Value()), static_cast<double>(control.Max()));
        widget.SetOverload(control.Value() >= control.Max());
    });
}

void Binder::Bind(LockLamp& widget, Indicator& control) {
    Add(widget, control, [&widget, &control] {
        widget.SetColour(ColourOf(control.BackColor()));
        widget.SetGood(control.BackColor() == kLightGreen);
    });
}

void Binder::Bind(StateDot& widget, Indicator& control) {
    Add(widget, control, [&widget, &control] { widget.SetColour(ColourOf(control.BackColor())); });
}

}  // namespace sonavex::ui
