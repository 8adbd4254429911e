#include <pylon/data/version.h>

#include <QtCore/QStringList>

#include <algorithm>

namespace pylon {

namespace {

constexpr int none = 9999;

using MajorMinor = std::pair<int, int>;

MajorMinor majorAndMinor(const QString& version) {
    const QStringList parts = version.split(QLatin1Char('.'));
    if (parts.size() < 2)
        return {none, none};
    return {parts[0].toInt(), parts[1].toInt()};
}

}  // namespace

QString lowestVersion(const QList<QString>& versions) {
    MajorMinor lowest(none, none);
    for (const QString& version : versions)
        lowest = std::min(lowest, majorAndMinor(version));
    if (lowest.first == none || lowest.second == none)
        return QString();
    return QString::number(lowest.first) + QLatin1Char('.') + QString::number(lowest.second);
}

}  // namespace pylon
