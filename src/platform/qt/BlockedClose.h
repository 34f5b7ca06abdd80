#pragma once

#include <QAbstractNativeEventFilter>
#include <QWidget>
#include <cstdint>
#include <functional>

namespace sonavex {

// Reports that the window manager asks a window to close while a modal dialog blocks it. Qt drops that
// request. Works on X11; on other systems nothing is reported.
class BlockedClose : public QAbstractNativeEventFilter {
public:
    // Names in the X server's protocol of closing; 0 if there is no X server.
    struct Atoms {
        std::uint32_t protocols = 0;     // WM_PROTOCOLS
        std::uint32_t deleteWindow = 0;  // WM_DELETE_WINDOW
    };
    static Atoms AtomsOfTheServer();

    // Calls `requested` through the event loop. The window must outlive this object.
    BlockedClose(const QWidget& window, Atoms atoms, std::function<void()> requested);
    ~BlockedClose() override;
    BlockedClose(const BlockedClose&) = delete;
    BlockedClose& operator=(const BlockedClose&) = delete;

    // Filters nothing out.
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    const QWidget& window_;
    Atoms atoms_;
    std::function<void()> requested_;
    QObject context_;
};

}  // namespace sonavex
