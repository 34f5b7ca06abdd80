#include "ui/widgets/ReadingRowView.h"

#include <QHBoxLayout>
#include <QLabel>

#include "ui/widgets/UnitChoice.h"

namespace sonavex::ui {
namespace {

constexpr int kSwatchGap = 5;

QLabel* MakeCell(QWidget& row, const char* role, Qt::Alignment alignment) {
    auto* const label = new QLabel(&row);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(alignment | Qt::AlignVCenter);
    if (*role != '\0') label->setProperty("role", role);
    return label;
}

}  // namespace

ReadingRowView::ReadingRowView(bool stripe, QWidget* parent)
    : QFrame(parent),
      name_(MakeCell(*this, "", Qt::AlignLeft)),
      value_(MakeCell(*this, "value", Qt::AlignRight)),
      unit_(new UnitChoice(this)),
      spread_(MakeCell(*this, "figureQuiet", Qt::AlignRight)) {
    setProperty("stripe", stripe);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(7, 3, 7, 3);
    row->setSpacing(2);
    row->addWidget(name_);
    row->addWidget(value_, 1);
    row->addWidget(unit_);
    row->addWidget(spread_);
}

void ReadingRowView::SetSwatch(QWidget& swatch) {
    auto& row = static_cast<QHBoxLayout&>(*layout());
    row.insertWidget(0, &swatch);
    row.insertSpacing(1, kSwatchGap);
}

void ReadingRowView::SetNameWidget(QWidget& widget) {
    delete layout()->replaceWidget(name_, &widget);
    name_->hide();
}

void ReadingRowView::AlignColumns() {
    spread_->setFixedWidth(spread_->fontMetrics().horizontalAdvance(QStringLiteral("± 0.0000")));
}

}  // namespace sonavex::ui
