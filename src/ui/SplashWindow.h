#pragma once

#include <QSplashScreen>

#include "core/shell/frmSplash.h"

namespace sonavex::ui {

// The splash form on the screen while the instrument starts; a click closes it.
class SplashWindow : public QSplashScreen {
    Q_OBJECT

public:
    // The form must outlive the window.
    explicit SplashWindow(frmSplash& form);

    // Shows what the form says, or closes when it has been unloaded.
    void Refresh();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void drawContents(QPainter* painter) override;

private:
    frmSplash& form_;
};

}  // namespace sonavex::ui
