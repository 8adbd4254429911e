#include <pylon/platform/systeminfo.h>

#include <QtCore/QList>
#include <QtCore/QStringView>

#include <algorithm>

namespace pylon {

namespace {

using Lines = QList<QStringView>;

// Values without a label to go by: their lines, counted behind the empty one that comes first.
struct Place {
    qsizetype line;
    QString SystemInfo::*value;
};
constexpr Place places[] = {{0, &SystemInfo::hostName},
                            {1, &SystemInfo::osName},
                            {2, &SystemInfo::osVersion},
                            {8, &SystemInfo::productId},
                            {13, &SystemInfo::systemType}};

// The tools end lines with a carriage return too, so lines that look empty are kept, and counted.
constexpr qsizetype firstHeading = 3;
constexpr qsizetype headingToDetails = 2;
constexpr qsizetype headingToHeading = 3;

constexpr bool isSpace(QChar c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r');
}

constexpr bool isDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

Lines linesOf(const QString& text) {
    return QStringView(text).split(u'\n', Qt::SkipEmptyParts);
}

QString value(QStringView line) {
    const auto parts = line.split(u':');
    return parts.size() > 1 ? parts[1].trimmed().toString() : QString();
}

/// For example "          [01]: Intel64 Family 6 Model 158 Stepping 10 GenuineIntel ~3192 Mhz".
bool isProcessor(QStringView line) {
    const auto bracket = std::find_if_not(line.begin(), line.end(), isSpace);
    if (bracket == line.begin() || bracket == line.end() || *bracket != u'[')
        return false;
    const auto digits = bracket + 1;
    const auto closing = std::find_if_not(digits, line.end(), isDigit);
    if (closing == digits || closing == line.end() || *closing != u']')
        return false;
    return line.sliced(closing - line.begin()).contains(QStringView(u"Mhz"));
}

bool readMemory(const Lines& lines, SystemInfo& info) {
    auto line = std::find_if(lines.begin(), lines.end(), [](QStringView candidate) {
        return candidate.contains(QStringView(u"MB"));
    });
    if (line == lines.end())
        return false;
    info.totalPhysicalMemory = value(*line);
    if (++line != lines.end())
        info.availablePhysicalMemory = value(*line);
    return true;
}

bool readProcessors(const Lines& lines, SystemInfo& info) {
    auto line = std::find_if(lines.begin(), lines.end(), isProcessor);
    if (line == lines.end())
        return false;
    for (; line != lines.end() && isProcessor(*line); ++line)
        info.processors.append(value(*line));
    if (line != lines.end() && line->startsWith(QStringView(u"BIOS")))
        info.bios = value(*line);
    return true;
}

qsizetype findHeading(const Lines& lines, qsizetype from) {
    while (from < lines.size() && isSpace(lines[from].front()))
        ++from;
    return from;
}

NetworkInterface readAdapter(const Lines& lines, qsizetype heading) {
    NetworkInterface adapter;
    adapter.name = lines[heading].split(u':').front().trimmed().toString();
    for (qsizetype i = heading + headingToDetails; i < lines.size(); ++i) {
        const QStringView line = lines[i];
        if (!line.startsWith(u' '))
            break;
        if (line.contains(QStringView(u"Physical Address")))
            adapter.physicalAddress = value(line);
        if (line.contains(QStringView(u"IP Address")))
            adapter.ipAddress = value(line);
        if (line.contains(QStringView(u"Subnet Mask")))
            adapter.subnetMask = value(line);
    }
    return adapter;
}

}  // namespace

SystemInfoFindings parseSystemInfo(const QString& text, SystemInfo& info) {
    const Lines lines = linesOf(text).mid(1);
    for (const Place& place : places) {
        if (place.line < lines.size())
            info.*place.value = value(lines[place.line]);
    }
    SystemInfoFindings findings;
    findings.memory = readMemory(lines, info);
    findings.processors = readProcessors(lines, info);
    return findings;
}

std::vector<NetworkInterface> parseNetworkInfo(const QString& text) {
    const Lines lines = linesOf(text);
    std::vector<NetworkInterface> adapters;
    qsizetype heading = findHeading(lines, firstHeading);
    while (heading < lines.size()) {
        adapters.push_back(readAdapter(lines, heading));
        heading = findHeading(lines, heading + headingToHeading);
    }
    return adapters;
}

}  // namespace pylon
