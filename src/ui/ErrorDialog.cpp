#include "ui/ErrorDialog.h"

#include <QPainter>
#include <QPixmap>
#include <QPushButton>

#include "ui/widgets/Theme.h"
#include "ui_frmError.h"

namespace sonavex::ui {
namespace {

constexpr int kMessageCharacters = 76;
constexpr int kStatusLines = 2;

constexpr int kMarkSize = 32;

// A stop sign, drawn so that it is sharp at every scale.
QPixmap StopSign(qreal pixelRatio) {
    const Theme& theme = Theme::Current();
    QPixmap pixmap((QSizeF(kMarkSize, kMarkSize) * pixelRatio).toSize());
    pixmap.setDevicePixelRatio(pixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.overload);
    const QRectF disc(0, 0, kMarkSize, kMarkSize);
    painter.drawEllipse(disc);
    painter.setPen(QPen(Qt::white, 3.2, Qt::SolidLine, Qt::RoundCap));
    const QRectF cross = disc.adjusted(10.5, 10.5, -10.5, -10.5);
    painter.drawLine(cross.topLeft(), cross.bottomRight());
    painter.drawLine(cross.topRight(), cross.bottomLeft());
    return pixmap;
}

}  // namespace

ErrorDialog::ErrorDialog(frmError& form, HandlerGuard& guard)
    : FormDialog(form.Frame, guard, [&form] { form.Unload(); }),
      form_(form),
      ui_(std::make_unique<Ui::frmError>()) {
    ui_->setupUi(this);
    ApplyTheme(*this);
    ui_->icon->setPixmap(StopSign(devicePixelRatio()));
    connect(ui_->closeButton, &QPushButton::clicked, this, &ErrorDialog::reject);
    binder_.Bind(*ui_->lblMessage, form_.lblMessage);
    binder_.Bind(*ui_->lblStatus, form_.lblStatus);
    binder_.Bind(*ui_->cmdDirectX, form_.cmdDirectX);
    binder_.Bind(*ui_->cmdNewSoundCard, form_.cmdNewSoundCard);
    binder_.Bind(*ui_->Command1, form_.Command1);
    binder_.Bind(*ui_->Command2, form_.Command2);
    form_.OnClosed = [this] { Close(); };
    form_.Form_Load();
    binder_.Flush();
    SetSize();
}

// Sets the width for a sentence of the message and the height for its lines.
void ErrorDialog::SetSize() {
    const QFontMetrics metrics = ui_->lblMessage->fontMetrics();
    ui_->lblMessage->setMinimumWidth(metrics.averageCharWidth() * kMessageCharacters);
    ui_->lblStatus->setMinimumHeight(ui_->lblStatus->fontMetrics().height() * kStatusLines);
    ui_->closeButton->setFocus();
    const int width = layout()->totalSizeHint().width();
    resize(width, layout()->totalHeightForWidth(width));
}

ErrorDialog::~ErrorDialog() {
    form_.OnClosed = {};
}

}  // namespace sonavex::ui
