#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <functional>

class QApplication;
class QEvent;
class QPainter;
class QWidget;

namespace sonavex::ui {

// The colours of the window, derived from the desktop's palette (light or dark).
struct Theme {
    QColor window;
    QColor card;
    QColor stripe;  // every second row of a table
    QColor border;
    QColor text;
    QColor quiet;  // captions and units
    QColor faint;  // disabled elements
    QColor accent;
    QColor onAccent;
    QColor field;  // entry fields and quiet buttons
    QColor track;  // the empty part of a bar
    QColor warning;
    QColor overload;
    QColor valid;   // a valid reading
    QColor second;  // traces in addition to the live one
    QColor third;
    QColor fourth;
    QColor outside;  // ground of a plot outside the measured band
    bool dark = false;

    // Theme of the present application palette.
    static const Theme& Current();

    static Theme Light();
    static Theme Dark();
};

// While it exists the present theme is the light one: for pages on paper.
class PageColours {
public:
    PageColours();
    ~PageColours();
    PageColours(const PageColours&) = delete;
    PageColours& operator=(const PageColours&) = delete;
};

// Applies colours and fonts to a window and its widgets. A widget's property "role" selects its style: unit,
// title, quiet, value, figure, boldfigure, figureSmall, figureQuiet, order, state, rate, primary, note,
// quietNote, preset, alarm, segments, flat, small, column, trouble. A label with the property "ink" set to
// "quiet" is drawn without emphasis.
void ApplyTheme(QWidget& window);

// The size of captions and units.
QFont QuietFont(QFont font);
// Draws a label without emphasis, or as usual.
void SetQuietInk(QWidget& label, bool quiet);
// Applies the style sheet again after a change of the widget's role.
void Repolish(QWidget& widget);

// Follows changes of the desktop's colours and fonts. One for each window.
class ThemeChanges {
public:
    // Call from changeEvent. Calls `apply` when the event is such a change. Events that apply causes itself
    // are ignored.
    void Handle(const QEvent& event, const std::function<void()>& apply);

private:
    bool applying_ = false;
};

// Makes a widget paint its own background (card, stripe or window), so that a change repaints only this
// widget. Call before ApplyTheme.
void PaintOwnBackground(QWidget& widget);
// Paints the background set by PaintOwnBackground, if any. Needed by widgets that paint themselves; labels do
// it automatically.
void PaintBackground(QPainter& painter, const QWidget& widget);

}  // namespace sonavex::ui
