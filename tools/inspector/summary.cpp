#include "summary.h"

#include <algorithm>
#include <array>
#include <vector>

#include "text.h"

namespace pylon::inspector {

namespace {

struct Column {
    const char* title;
    Align align;
};

enum ColumnIndex { Camera, Track, Frames, KeyFrames, Bytes, First, Last, Rate, LongestGap };

constexpr std::array<Column, 9> columns{{
    {"CAMERA", Align::Left},
    {"TRACK", Align::Right},
    {"FRAMES", Align::Right},
    {"KEY", Align::Right},
    {"BYTES", Align::Right},
    {"FIRST", Align::Left},
    {"LAST", Align::Left},
    {"FRAMES/S", Align::Right},
    {"LONGEST GAP", Align::Right},
}};

using Line = std::array<QString, columns.size()>;

// A damaged input can name four thousand million of them.
constexpr size_t maxTracks = 4096;
constexpr quint64 otherTracks = ~quint64{0};

constexpr int ticksPerSecond = 300;
constexpr qint64 secondsPerDay = 86400;
constexpr int nameWidth = 40;

quint64 keyOf(const Image& image) {
    return quint64{image.cameraId()} << 16 | image.trackId();
}

QString zonedTime(const Image& image, const std::optional<Zone>& zone) {
    QByteArray text;
    appendZonedTime(text, image.timestampMSec(), zone ? *zone : zoneOf(image));
    return QString::fromLatin1(text);
}

// "0.200 s", from two minutes on "1h02m03s", from two days on "2d03h".
QString duration(qint64 ticks) {
    const qint64 seconds = ticks / ticksPerSecond;
    const auto two = [](qint64 number) {
        return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
    };
    if (seconds < 120)
        return QString::number(static_cast<double>(ticks) / ticksPerSecond, 'f', 3) +
               QLatin1String(" s");
    if (seconds < 2 * secondsPerDay)
        return QStringLiteral("%1h%2m%3s")
            .arg(seconds / 3600)
            .arg(two(seconds / 60 % 60), two(seconds % 60));
    return QStringLiteral("%1d%2h").arg(seconds / secondsPerDay).arg(two(seconds / 3600 % 24));
}

// Frames after the first one, over the time they took; nothing to tell from a single moment.
QString meanRate(qint64 frames, qint64 ticks) {
    if (ticks == 0)
        return QStringLiteral("-");
    const double rate =
        static_cast<double>(frames - 1) * ticksPerSecond / static_cast<double>(ticks);
    return rate < 0.1 ? QString::number(rate, 'g', 2) : QString::number(rate, 'f', 2);
}

QString cameraCell(const TrackFigures& track, int idWidth) {
    const QString name = printable(QString::fromUtf8(track.cameraName));
    return QStringLiteral("%1 ").arg(track.latest.cameraId(), idWidth) +
           (displayWidth(name) > nameWidth ? fitted(name, nameWidth) : name);
}

Line trackLine(const TrackFigures& track, const std::optional<Zone>& zone, int idWidth) {
    return {cameraCell(track, idWidth),
            QString::number(track.latest.trackId()),
            QString::number(track.frames),
            QString::number(track.keyFrames),
            QString::number(track.bytes),
            zonedTime(track.earliest, zone),
            zonedTime(track.latest, zone),
            meanRate(track.frames, track.latest.time() - track.earliest.time()),
            track.frames > 1 ? duration(track.longestGap) : QStringLiteral("-")};
}

// The tracks that found no room for figures of their own.
Line otherLine(const TrackFigures& track, const std::optional<Zone>& zone) {
    Line line = trackLine(track, zone, 0);
    line[Camera] = QStringLiteral("others");
    line[Track] = line[Rate] = line[LongestGap] = QString();
    return line;
}

template <typename Tracks>
Line totalLine(const Tracks& tracks) {
    qint64 frames = 0;
    qint64 keyFrames = 0;
    qint64 bytes = 0;
    for (const auto& [key, track] : tracks) {
        frames += track.frames;
        keyFrames += track.keyFrames;
        bytes += track.bytes;
    }
    Line line;
    line[Camera] = QStringLiteral("total");
    line[Frames] = QString::number(frames);
    line[KeyFrames] = QString::number(keyFrames);
    line[Bytes] = QString::number(bytes);
    return line;
}

std::array<int, columns.size()> widthsOf(const std::vector<Line>& lines) {
    std::array<int, columns.size()> widths{};
    for (const Line& line : lines) {
        for (size_t i = 0; i < columns.size(); ++i)
            widths[i] = std::max(widths[i], displayWidth(line[i]));
    }
    return widths;
}

void appendLine(QByteArray& out, const Line& line, const std::array<int, columns.size()>& widths) {
    QString text;
    for (size_t i = 0; i < columns.size(); ++i) {
        const QString padding(widths[i] - displayWidth(line[i]), QLatin1Char(' '));
        if (i > 0)
            text += QLatin1String("  ");
        text += columns[i].align == Align::Left ? line[i] + padding : padding + line[i];
    }
    while (text.endsWith(QLatin1Char(' ')))
        text.chop(1);
    out.append(text.toUtf8());
}

}  // namespace

TrackFigures::TrackFigures(const Image& first)
    : earliest(first), latest(first), previousTime(first.time()) {}

void TrackFigures::add(const Image& image) {
    const qint64 time = image.time();
    ++frames;
    keyFrames += image.iframe() ? 1 : 0;
    bytes += image.totalSize();
    if (time < earliest.time())
        earliest = image;
    if (time >= latest.time())
        latest = image;
    longestGap = std::max(longestGap, time - previousTime);
    previousTime = time;
    if (const QByteArray& name = image.extension(ImageHeaderExtension::CameraName); !name.isEmpty())
        cameraName = name;
}

void Summary::add(const Image& image) {
    ++frames_;
    quint64 key = keyOf(image);
    auto track = tracks_.find(key);
    if (track == tracks_.end()) {
        if (tracks_.size() >= maxTracks)
            key = otherTracks;
        track = tracks_.try_emplace(key, image).first;
    }
    track->second.add(image);
}

QByteArray Summary::text(const std::optional<Zone>& zone, const Style& style) const {
    QByteArray out;
    std::vector<Line> lines(1);
    for (size_t i = 0; i < columns.size(); ++i)
        lines[0][i] = QString::fromLatin1(columns[i].title);
    quint32 largestId = 0;
    for (const auto& [key, track] : tracks_)
        largestId = std::max(largestId, track.latest.cameraId());
    const auto idWidth = static_cast<int>(QString::number(largestId).size());
    for (const auto& [key, track] : tracks_)
        lines.push_back(key == otherTracks ? otherLine(track, zone)
                                           : trackLine(track, zone, idWidth));
    if (tracks_.size() > 1)
        lines.push_back(totalLine(tracks_));

    const auto widths = widthsOf(lines);
    for (size_t i = 0; i < lines.size(); ++i) {
        out.append(i == 0 ? style.heading : "");
        appendLine(out, lines[i], widths);
        out.append(i == 0 ? style.off : "");
        out.append('\n');
    }
    return out;
}

}  // namespace pylon::inspector
