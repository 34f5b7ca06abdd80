#pragma once

#include <QSplashScreen>

#include "core/shell/frmSplash.h"

namespace sonavex::ui {

// Window of the splash form during the start. A click closes it.
class SplashWindow : public QSplashScreen {
    Q_OBJECT

public:
    // The form must outlive the window.
    explicit SplashWindow(frmSplash& form);

    // Shows the form's text, or closes if the form has been unloaded.
    void Refresh();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void drawContents(QPainter* painter) override;

private:
    frmSplash& form_;
};

}  // namespace sonavex::ui
