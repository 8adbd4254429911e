// How the values of this folder show in debug output.

#include <pylon/time/timestamp.h>
#include <pylon/time/timezone.h>
#include <QtCore/QDebug>

#include <cstdlib>

namespace pylon {

namespace {

constexpr int quartersPerHour = 4;
constexpr int minutesPerQuarter = 15;

QString twoDigits(int number) {
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

}  // namespace

QDebug operator<<(QDebug debug, TimeZoneAbbrevation abbrevation) {
    const QDebugStateSaver saver(debug);
    debug.nospace() << "TimeZoneAbbrevation(" << QLatin1String(abbrevation.c_str()) << ", "
                    << int{abbrevation.index()} << ')';
    return debug;
}

QDebug operator<<(QDebug debug, const TimeZone& zone) {
    const QDebugStateSaver saver(debug);
    debug.nospace() << "TimeZone(" << (zone.isServerTimeZone() ? "server " : "");
    if (zone.isValidOffset()) {
        const int quarters = std::abs(int{zone.offset()});
        debug << (zone.offset() < 0 ? '-' : '+') << quarters / quartersPerHour << ':'
              << qPrintable(twoDigits(quarters % quartersPerHour * minutesPerQuarter));
    } else {
        debug << "unknown";
    }
    debug << ' ' << QString::fromStdString(zone.name()) << ' '
          << QLatin1String(zone.abbrevation().c_str()) << ')';
    return debug;
}

QDebug operator<<(QDebug debug, const ptimeval& moment) {
    const QDebugStateSaver saver(debug);
    debug.nospace().noquote() << "ptimeval(" << moment.tv_sec << '.'
                              << QStringLiteral("%1").arg(moment.tv_usec, 6, 10, QLatin1Char('0'))
                              << ')';
    return debug;
}

QDebug operator<<(QDebug debug, const Timestamp& stamp) {
    const QDebugStateSaver saver(debug);
    char text[Timestamp::FMTBUF_SIZE] = "";
    stamp.toDefaultString(text, Timestamp::FMTBUF_SIZE);
    debug.nospace() << "Timestamp(" << text << ')';
    return debug;
}

}  // namespace pylon
