#include "platform/qt/QtWallClock.h"

#include <QDateTime>

namespace sonavex {

DateTime LocalDateTime() {
    const QDateTime now = QDateTime::currentDateTime();
    const QDate date = now.date();
    const QTime time = now.time();
    return {date.year(), date.month(), date.day(), time.hour(), time.minute(), time.second()};
}

}  // namespace sonavex
