#pragma once

#include <QColor>
#include <QString>

class QApplication;
class QPainter;
class QWidget;

namespace sonavex::ui {

// The colours of the face, made from the desktop's palette: light or dark as the desktop is.
struct Theme {
    QColor window;
    QColor card;
    QColor stripe;  // every second row of a table
    QColor border;
    QColor text;
    QColor quiet;  // captions and units
    QColor faint;  // what is not available
    QColor accent;
    QColor onAccent;
    QColor field;  // entry fields and quiet buttons
    QColor track;  // the empty part of a bar
    QColor warning;
    QColor overload;
    bool dark = false;

    // Of the application's palette at present.
    static const Theme& Current();

    static Theme Light();
    static Theme Dark();
};

// Takes colours and fonts over to a window and everything in it. A widget says in its property "role"
// what it is: hero, unit, title, quiet, value, figure, figureSmall, state, primary, note.
void ApplyTheme(QWidget& window);

// Makes a widget that changes often paint the ground it stands on (card, stripe or window) itself, so that
// a change paints this widget alone and nothing below it. Before ApplyTheme.
void StandOnGround(QWidget& widget);
// Fills the widget with its ground, if it stands on one. For widgets that paint themselves; labels need
// not call it.
void PaintGround(QPainter& painter, const QWidget& widget);

}  // namespace sonavex::ui
