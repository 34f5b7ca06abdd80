#include "ui/widgets/Theme.h"

#include <QApplication>
#include <QEvent>
#include <QFontDatabase>
#include <QLabel>
#include <QPainter>
#include <QPalette>
#include <QStyle>
#include <QVariant>
#include <QWidget>

namespace sonavex::ui {
namespace {

int pages = 0;  // that are being painted

struct RoleFont {
    const char* role;
    double scale;
    bool fixedPitch;
    bool bold;
};

constexpr double kQuietScale = 0.92;

constexpr RoleFont kRoleFonts[] = {
    {"unit", 2.6, false, false},
    {"title", 1.12, false, false},
    {"quiet", kQuietScale, false, false},
    {"value", 1.15, true, true},
    {"figure", 1.3, true, false},
    {"boldfigure", 1.3, true, true},
    {"order", 1.15, false, false},
    {"state", 1.0, false, true},
    {"rate", 1.0, false, false},
    {"figureSmall", 1.0, true, false},
    {"figureQuiet", kQuietScale, true, false},
};

QFont FontOf(const RoleFont& role) {
    const QFont base = QApplication::font();
    QFont font = role.fixedPitch ? QFontDatabase::systemFont(QFontDatabase::FixedFont) : base;
    font.setPointSizeF(base.pointSizeF() * role.scale);
    font.setBold(role.bold);
    return font;
}

void ApplyFonts(QWidget& window) {
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        const QByteArray role = widget->property("role").toByteArray();
        for (const RoleFont& roleFont : kRoleFonts)
            if (role == roleFont.role) widget->setFont(FontOf(roleFont));
    }
}

QString StyleSheet(const Theme& theme) {
    QString sheet = QStringLiteral(R"(
QMainWindow, QDialog, QWidget#centralwidget, QWidget[page="true"] { background: @window; color: @text; }
QMenuBar { background: @card; color: @text; padding: 2px; }
QMenuBar::item { padding: 4px 10px; background: transparent; }
QMenuBar::item:selected { background: @field; }
QLabel { color: @text; background: transparent; }
QLabel:disabled { color: @faint; }
QLabel[role="title"], QLabel[role="quiet"], QLabel[role="unit"], QLabel[role="figureQuiet"], QLabel[ink="quiet"] { color: @quiet; }
QFrame[card="true"] { background: @card; border: 1px solid @border; border-radius: 8px; }
QFrame[stripe="true"] { background: @stripe; border: none; border-radius: 4px; }
QFrame[stripe="false"] { background: transparent; border: none; }
QLabel[stale="true"] { color: @faint; }
QLabel[background="card"] { background: @card; }
QLabel[background="stripe"] { background: @stripe; }
QLabel[background="window"] { background: @window; }
QLabel[role="alarm"] { color: @overload; border: 1px solid @overload; border-radius: 9px; padding: 1px 12px; }
QLabel[role="note"] { color: @warning; border: 1px solid @warning; border-radius: 9px; padding: 1px 12px; }
QLabel[role="quietNote"] { color: @quiet; border: 1px solid @quiet; border-radius: 9px; padding: 1px 12px; }
QLabel[role="trouble"] { color: @overload; }
QLineEdit { background: @field; color: @text; border: 1px solid @border; border-radius: 5px; padding: 4px 8px;
    selection-background-color: @accent; selection-color: @onAccent; }
QLineEdit:focus { border: 2px solid @accent; padding: 3px 7px; }
QLineEdit:disabled { color: @quiet; }
QPushButton { background: @field; color: @text; border: 1px solid @border; border-radius: 5px; padding: 6px 16px; }
QPushButton:hover { border-color: @accent; }
QPushButton:focus { border: 2px solid @accent; padding: 5px 15px; }
QPushButton:pressed, QPushButton:checked { background: @accent; color: @onAccent; }
QPushButton:disabled { color: @quiet; background: @window; }
QPushButton:checked:disabled { background: @track; border-color: @quiet; color: @text; }
QPushButton[role="primary"] { background: @accent; color: @onAccent; border-color: @accent; font-weight: bold; }
QPushButton[role="primary"]:focus { border: 2px solid @text; }
QPushButton[role="primary"]:disabled { background: @track; color: @quiet; border-color: @border; }
QPushButton[role="preset"] { border-radius: 10px; padding: 2px 10px; min-width: 24px; }
QPushButton[role="small"] { padding: 3px 7px; }
QPushButton[role="small"]:focus { padding: 2px 6px; }
QPushButton[role="flat"] { background: transparent; border: 1px solid transparent; padding: 2px 4px; text-align: left; }
QPushButton[role="flat"]:focus { border: 1px solid @accent; }
QPushButton[role="flat"]:hover { color: @accent; }
QWidget[role="segments"] { background: @field; border: 1px solid @border; border-radius: 5px; }
QWidget[role="segments"] QPushButton { background: transparent; border: 2px solid transparent; border-radius: 4px; padding: 3px 4px; }
QWidget[role="segments"] QPushButton:hover { border-color: @border; }
QWidget[role="segments"] QPushButton:checked { background: @accent; color: @onAccent; border-color: @accent; }
QWidget[role="segments"] QPushButton:focus { border-color: @text; }
QWidget[role="segments"] QPushButton:disabled { color: @quiet; }
QWidget[role="segments"] QPushButton:checked:disabled { background: @track; color: @text; border-color: @border; }
QComboBox QAbstractItemView { background: @card; color: @text; border: 1px solid @border; outline: none;
    selection-background-color: @accent; selection-color: @onAccent; }
QCheckBox { color: @text; spacing: 8px; }
QCheckBox:disabled { color: @quiet; }
QRadioButton { color: @text; spacing: 8px; }
QRadioButton:disabled { color: @faint; }
QDialog QCheckBox:disabled { color: @faint; }
QTabWidget::pane { border: none; border-top: 1px solid @border; background: @window; }
QTabBar { background: @window; qproperty-drawBase: 0; }
QTabBar::tab { background: transparent; color: @quiet; padding: 7px 18px; border: none; border-bottom: 3px solid transparent; margin-right: 12px; }
QTabBar::tab:selected { color: @text; font-weight: bold; border-bottom-color: @accent; }
QTabBar::tab:focus { color: @accent; }
QProgressBar { background: @track; border: none; border-radius: 3px; max-height: 6px; }
QProgressBar::chunk { background: @accent; border-radius: 3px; }
QListWidget { background: @card; color: @text; border: none; outline: none; }
QListWidget::item { background: @stripe; border-radius: 4px; padding: 7px 5px; margin: 2px 0; }
QListWidget::item:selected { background: @accent; color: @onAccent; }
QListWidget:focus { border: 1px solid @accent; border-radius: 4px; }
QTreeView, QTableWidget { background: @card; color: @text; border: none; outline: none; }
QTreeView QLineEdit { padding: 1px 7px; }
QTreeView QLineEdit:focus { padding: 0px 6px; }
QHeaderView, QTreeView QHeaderView::section, QTableWidget QHeaderView::section, QTableWidget QTableCornerButton::section { background: @card; color: @quiet; border: none; }
QTreeView QHeaderView::section { padding: 5px 10px; }
QTableWidget QHeaderView::section { padding: 0 8px 0 0; }
QTableWidget:focus { border: 1px solid @accent; }
QTreeView QScrollBar:vertical { background: @card; width: 9px; margin: 0; border: none; }
QTreeView QScrollBar::handle:vertical { background: @faint; border-radius: 4px; min-height: 24px; }
QTreeView QScrollBar::add-line:vertical, QTreeView QScrollBar::sub-line:vertical { height: 0; }
QTableWidget QScrollBar:horizontal { background: @card; height: 7px; margin: 0; border: none; }
QTableWidget QScrollBar::handle:horizontal { background: @faint; border-radius: 3px; min-width: 24px; }
QTableWidget QScrollBar::add-line:horizontal, QTableWidget QScrollBar::sub-line:horizontal { width: 0; }
QSlider::groove:horizontal { background: @track; height: 6px; border-radius: 3px; }
QSlider::sub-page:horizontal { background: @accent; border-radius: 3px; }
QSlider::handle:horizontal { background: @accent; width: 14px; margin: -5px 0; border-radius: 8px; border: 1px solid @card; }
QSlider::handle:horizontal:focus { width: 12px; border: 2px solid @text; }
QSlider::sub-page:horizontal:disabled, QSlider::handle:horizontal:disabled { background: @quiet; }
QDialog QSlider { min-height: 22px; }
QDialog QSlider::sub-page:horizontal:disabled, QDialog QSlider::handle:horizontal:disabled { background: @border; }
QScrollArea[role="column"], QWidget[scrolled="true"] { background: transparent; border: none; }
QScrollArea[role="column"] QScrollBar:vertical { background: @window; width: 7px; margin: 0; border: none; }
QScrollArea[role="column"] QScrollBar::handle:vertical { background: @faint; border-radius: 3px; min-height: 24px; }
QScrollArea[role="column"] QScrollBar::add-line:vertical, QScrollArea[role="column"] QScrollBar::sub-line:vertical { height: 0; }
QToolTip { background: @card; color: @text; border: 1px solid @border; padding: 4px; }
)");
    const std::pair<const char*, QColor> colours[] = {
        // Longer names first, because a shorter name can be part of a longer one.
        {"@onAccent", theme.onAccent}, {"@window", theme.window}, {"@stripe", theme.stripe},
        {"@border", theme.border},     {"@accent", theme.accent}, {"@warning", theme.warning},
        {"@overload", theme.overload}, {"@quiet", theme.quiet},   {"@field", theme.field},
        {"@faint", theme.faint},       {"@track", theme.track},   {"@card", theme.card},
        {"@text", theme.text}};
    for (const auto& [name, colour] : colours) sheet.replace(QLatin1String(name), colour.name());
    return sheet;
}

// Paints a label's background before its text. The background in the style sheet only prevents Qt from
// treating the label as transparent; Qt does not paint it for an opaque label.
class BackgroundPainter : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* const label = event->type() == QEvent::Paint ? qobject_cast<QLabel*>(watched) : nullptr;
        if (label == nullptr) return false;
        QPainter painter(label);
        PaintBackground(painter, *label);
        return false;
    }
};

}  // namespace

Theme Theme::Light() {
    Theme theme;
    theme.window = QColor("#f3f5f7");
    theme.card = QColor("#ffffff");
    theme.stripe = QColor("#f3f4f6");
    theme.border = QColor("#dde1e7");
    theme.text = QColor("#1b1f24");
    theme.quiet = QColor("#5a6472");
    theme.faint = QColor("#a4acb8");
    theme.accent = QColor("#1668c7");
    theme.onAccent = QColor("#ffffff");
    theme.field = QColor("#edeff3");
    theme.track = QColor("#e1e5eb");
    theme.warning = QColor("#9a5b00");
    theme.overload = QColor("#d01818");
    theme.valid = QColor("#0a7a3d");
    theme.second = QColor("#a2317f");
    theme.third = QColor("#0b7774");
    theme.fourth = QColor("#6b6716");
    theme.outside = QColor("#e9ecf0");
    return theme;
}

Theme Theme::Dark() {
    Theme theme;
    theme.window = QColor("#1b1e23");
    theme.card = QColor("#242830");
    theme.stripe = QColor("#1c1f25");
    theme.border = QColor("#353b46");
    theme.text = QColor("#e6e9ee");
    theme.quiet = QColor("#a0a8b4");
    theme.faint = QColor("#5c6572");
    theme.accent = QColor("#4aa0ff");
    theme.onAccent = QColor("#0b1320");
    theme.field = QColor("#2f3540");
    theme.track = QColor("#14171b");
    theme.warning = QColor("#ffb648");
    theme.overload = QColor("#ff5050");
    theme.valid = QColor("#4ed18a");
    theme.second = QColor("#e596cf");
    theme.third = QColor("#45cbc4");
    theme.fourth = QColor("#cdc46a");
    theme.outside = QColor("#242830");
    theme.dark = true;
    return theme;
}

const Theme& Theme::Current() {
    static const Theme light = Light();
    static const Theme dark = Dark();
    return pages == 0 && QApplication::palette().color(QPalette::Window).lightness() < 128 ? dark : light;
}

PageColours::PageColours() {
    ++pages;
}

PageColours::~PageColours() {
    --pages;
}

void PaintOwnBackground(QWidget& widget) {
    const char* background = "window";
    for (const QWidget* below = widget.parentWidget(); below != nullptr; below = below->parentWidget()) {
        if (below->property("stripe").toBool())
            background = "stripe";
        else if (below->property("card").toBool())
            background = "card";
        else
            continue;
        break;
    }
    widget.setProperty("background", QByteArray(background));
    widget.setAttribute(Qt::WA_OpaquePaintEvent);
    if (qobject_cast<QLabel*>(&widget) != nullptr) widget.installEventFilter(new BackgroundPainter(&widget));
}

void PaintBackground(QPainter& painter, const QWidget& widget) {
    const QByteArray background = widget.property("background").toByteArray();
    if (background.isEmpty()) return;
    const Theme& theme = Theme::Current();
    painter.fillRect(widget.rect(), background == "card"     ? theme.card
                                    : background == "stripe" ? theme.stripe
                                                             : theme.window);
}

void ApplyTheme(QWidget& window) {
    window.setStyleSheet(StyleSheet(Theme::Current()));
    ApplyFonts(window);
}

QFont QuietFont(QFont font) {
    font.setPointSizeF(font.pointSizeF() * kQuietScale);
    return font;
}

void Repolish(QWidget& widget) {
    widget.style()->unpolish(&widget);
    widget.style()->polish(&widget);
}

void SetQuietInk(QWidget& label, bool quiet) {
    const QByteArray ink = quiet ? "quiet" : "";
    if (label.property("ink").toByteArray() == ink) return;
    label.setProperty("ink", ink);
    Repolish(label);
}

void ThemeChanges::Handle(const QEvent& event, const std::function<void()>& apply) {
    const bool changed = event.type() == QEvent::PaletteChange || event.type() == QEvent::ThemeChange ||
                         event.type() == QEvent::ApplicationFontChange;
    if (!changed || applying_) return;
    applying_ = true;
    apply();
    applying_ = false;
}

}  // namespace sonavex::ui
