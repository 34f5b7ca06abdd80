#include "ui/AboutDialog.h"

#include <QIcon>

#include "ui/widgets/Theme.h"
#include "ui_frmAbout.h"

namespace sonavex::ui {
namespace {

constexpr int kIconSize = 64;
constexpr int kCharactersOfALine = 40;
constexpr double kTitleScale = 1.6;

}  // namespace

AboutDialog::AboutDialog(frmAbout& form, HandlerGuard& guard)
    : FormDialog(form.Frame, guard, [&form] { form.cmdOk_Click(); }),
      form_(form),
      ui_(std::make_unique<Ui::frmAbout>()) {
    ui_->setupUi(this);
    form_.Form_Load();
    ApplyTheme(*this);
    QFont title = font();
    title.setPointSizeF(title.pointSizeF() * kTitleScale);
    title.setBold(true);
    ui_->lblTitle->setFont(title);
    ui_->licence->setMinimumWidth(fontMetrics().averageCharWidth() * kCharactersOfALine);
    ui_->icon->setPixmap(QIcon(QStringLiteral(":/sonavex.png")).pixmap(kIconSize, kIconSize));
    binder_.Bind(*ui_->lblTitle, form_.lblTitle);
    binder_.Bind(*ui_->lblVersion, form_.lblVersion);
    binder_.Bind(*ui_->lblBuild, form_.lblBuild);
    binder_.Bind(*ui_->cmdOk, form_.cmdOk);
    binder_.Bind(*ui_->cmdSysInfo, form_.cmdSysInfo);
    // The address is a link, for mouse and keyboard.
    const QString address = QString::fromStdString(form_.lblWeb.Caption()).toHtmlEscaped();
    ui_->lblWeb->setText(QStringLiteral("<a style=\"color: %2\" href=\"%1\">%1</a>")
                             .arg(address, Theme::Current().accent.name()));
    ui_->lblWeb->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    connect(ui_->lblWeb, &QLabel::linkActivated, this,
            [this, &guard] { guard.Run([this] { form_.lblWeb_Click(); }); });
    form_.OnClosed = [this] { Close(); };
}

AboutDialog::~AboutDialog() {
    form_.OnClosed = {};
}

}  // namespace sonavex::ui
