#include "tablewriter.h"

#include <pylon/media/framereader.h>

#include <algorithm>
#include <array>

#include "text.h"

namespace pylon::inspector {

namespace {

struct Column {
    const char* title;
    int width;
    Align align;
};

enum ColumnIndex { Offset, Time, Camera, Track, Type, Key, Recording, Rate, Size, Payload, Marks };

// The width of the first column depends on the input; the last one ends the line.
constexpr std::array<Column, 11> columns{{
    {"OFFSET", 6, Align::Right},
    {"TIME", 30, Align::Left},
    {"CAMERA", 18, Align::Left},
    {"TRACK", 5, Align::Right},
    {"TYPE", 4, Align::Left},
    {"KEY", 3, Align::Left},
    {"REC", 3, Align::Left},
    {"RATE", 4, Align::Right},
    {"SIZE", 8, Align::Right},
    {"PAYLOAD", 8, Align::Right},
    {"MARKS", 0, Align::Left},
}};

constexpr char gap[] = "  ";
constexpr int offsetWidthOfUnknownSize = 10;
constexpr int cameraIdWidth = 3;

void appendCamera(QByteArray& out, const Image& image) {
    const qsizetype start = out.size();
    appendCell(out, qint64{image.cameraId()}, cameraIdWidth);
    out.append(' ');
    const int width = columns[Camera].width - static_cast<int>(out.size() - start);
    const QByteArray& name = image.extension(ImageHeaderExtension::CameraName);
    const auto isPlainAscii = [](char c) { return c >= 0x20 && c < 0x7F; };
    if (name.size() <= width && std::ranges::all_of(name, isPlainAscii))
        appendCell(out, name, width);
    else
        out.append(fitted(printable(QString::fromUtf8(name)), width).toUtf8());
}

void appendMarks(QByteArray& out, const FrameReader& reader, const Image& image) {
    const auto append = [&out](const char* mark) {
        out.append(' ');
        out.append(mark);
    };
    if (image.isHidden())
        append("hidden");
    if (image.isDewarping())
        append("dewarped");
    if (image.isEncrypted())
        append("encrypted");
    if (reader.header().isNewKeyRequired())
        append("new-key");
    if (const int camera = image.linkedAudioCameraID(); camera >= 0) {
        append("audio:");
        appendNumber(out, camera);
    }
    const QByteArray& marks = image.extension(ImageHeaderExtension::Marks);
    if (marks.count('h') != marks.size()) {
        append("marks:");
        out.append(printable(QString::fromUtf8(marks)).toUtf8());
    }
}

int digits(qint64 number) {
    int count = 1;
    for (; number >= 10; number /= 10)
        ++count;
    return count;
}

}  // namespace

TableWriter::TableWriter(qint64 inputSize, std::optional<Zone> zone, const Style& style)
    : offsetWidth_(inputSize > 0 ? std::max(columns[Offset].width, digits(inputSize))
                                 : offsetWidthOfUnknownSize),
      zone_(std::move(zone)),
      style_(style) {}

void TableWriter::appendHeading(QByteArray& out) const {
    out.append(style_.heading);
    for (size_t i = 0; i < columns.size(); ++i) {
        const Column& column = columns[i];
        if (i > 0)
            out.append(gap);
        appendCell(out, column.title, i == Offset ? offsetWidth_ : column.width, column.align);
    }
    out.append(style_.off);
    out.append('\n');
}

void TableWriter::appendTime(QByteArray& out, const Image& image) {
    cell_.resize(0);
    appendZonedTime(cell_, image.timestampMSec(), zone_ ? *zone_ : zoneOf(image));
    appendCell(out, cell_, columns[Time].width);
}

void TableWriter::appendFrame(QByteArray& out, const FrameReader& reader, qint64 offset) {
    if (!headingDone_) {
        appendHeading(out);
        headingDone_ = true;
    }
    const Image& image = reader.headerImage();
    appendCell(out, offset, offsetWidth_);
    out.append(gap);
    appendTime(out, image);
    out.append(gap);
    appendCamera(out, image);
    out.append(gap);
    appendCell(out, qint64{image.trackId()}, columns[Track].width);
    out.append(gap);
    const QString type = printable(QString(QLatin1Char(static_cast<char>(image.type()))));
    appendCell(out, type.toUtf8(), columns[Type].width);
    out.append(gap);
    if (image.iframe())
        out.append(style_.key);
    appendCell(out, image.iframe() ? "key" : "-", columns[Key].width);
    if (image.iframe())
        out.append(style_.off);
    out.append(gap);
    appendCell(out, image.isRecording() ? "rec" : "-", columns[Recording].width);
    out.append(gap);
    appendCell(out, qint64{image.rate()}, columns[Rate].width);
    out.append(gap);
    appendCell(out, qint64{image.totalSize()}, columns[Size].width);
    out.append(gap);
    appendCell(out, qint64{image.imageSize()}, columns[Payload].width);

    cell_.resize(0);
    appendMarks(cell_, reader, image);
    if (!cell_.isEmpty()) {
        out.append(' ');
        out.append(style_.caution);
        out.append(cell_);
        out.append(style_.off);
    }
    out.append('\n');
}

}  // namespace pylon::inspector
