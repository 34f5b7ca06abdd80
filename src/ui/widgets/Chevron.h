#pragma once

class QColor;
class QPainter;
class QRectF;

namespace sonavex::ui {

// Draws a small arrow head in the middle of the area. It points down, or to the right.
void DrawChevron(QPainter& painter, const QRectF& area, const QColor& colour, bool down = true);

}  // namespace sonavex::ui
