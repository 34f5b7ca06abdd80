#include "ui/widgets/UnitChoice.h"

#include <QAbstractItemModel>
#include <QPainter>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kUnitIndent = 6;
constexpr int kUnitArrow = 18;

}  // namespace

UnitChoice::UnitChoice(QWidget* parent) : ChoiceBox(parent, {kUnitIndent, kUnitArrow}) {
    setProperty("role", "quiet");
    setAccessibleName(tr("Unit"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(model(), signal, this, &UnitChoice::FollowCount);
    FollowCount();
}

void UnitChoice::FollowCount() {
    setFocusPolicy(Choosable() ? Qt::StrongFocus : Qt::NoFocus);
    setAttribute(Qt::WA_TransparentForMouseEvents, !Choosable());
    update();
}

QSize UnitChoice::sizeHint() const {
    return {kUnitIndent + fontMetrics().horizontalAdvance("dBFS") + kUnitArrow, fontMetrics().height() + 8};
}

void UnitChoice::paintEvent(QPaintEvent* event) {
    if (Choosable()) {
        ChoiceBox::paintEvent(event);
        return;
    }
    QPainter painter(this);
    painter.setPen(Theme::Current().quiet);
    painter.drawText(rect().adjusted(kUnitIndent, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, currentText());
}

}  // namespace sonavex::ui
