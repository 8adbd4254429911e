#include "motionview.h"

#include <pylon/log/logmacros.h>
#include <pylon/media/motionutils.h>
#include <QtCore/QFile>

#include <algorithm>
#include <array>
#include <optional>
#include <span>

#include "console.h"
#include "pngwriter.h"
#include "recordings.h"
#include "text.h"

namespace pylon::inspector {

namespace {

// More than the longest mask and the largest difference map take.
constexpr qint64 maxInput = qint64{64} * 1024;
constexpr qsizetype maxDiffMapCells = qsizetype{127} * 255;
// Pixels of a picture across and down a cell.
constexpr int cellPixels = 8;

// Cells with values of 0-255, and what there is to say about them above and below.
struct Motion {
    QByteArray cells;
    int width = 0;
    int height = 0;
    QString heading;
    QByteArray drawing = {};

    QByteArrayView row(int index) const {
        return QByteArrayView(cells).sliced(qsizetype{index} * width, width);
    }
};

// How many rows there are up to the last one that differs from the one above it.
int rowsThatDiffer(const Motion& motion) {
    int rows = motion.height;
    while (rows > 1 && motion.row(rows - 1) == motion.row(rows - 2))
        --rows;
    return rows;
}

// Two rows a line make cells about as wide as they are high.
void drawMask(Motion& mask) {
    static constexpr std::array blocks = {"·", "▀", "▄", "█"};
    const int rows = (rowsThatDiffer(mask) + 1) / 2 * 2;
    for (int row = 0; row < rows; row += 2) {
        for (int column = 0; column < mask.width; ++column) {
            const unsigned upper = mask.row(row)[column] != 0 ? 1 : 0;
            const unsigned lower = mask.row(row + 1)[column] != 0 ? 2 : 0;
            mask.drawing += blocks[upper + lower];
        }
        mask.drawing += '\n';
    }
    if (rows < mask.height)
        mask.drawing += QStringLiteral("rows %1 to %2 are like row %3\n")
                            .arg(rows + 1)
                            .arg(mask.height)
                            .arg(rows)
                            .toLatin1();
    mask.drawing += "█ watched, · not watched; two rows a line\n";
}

std::optional<Motion> readMask(QByteArray text, QString* error) {
    while (!text.isEmpty() && QByteArrayView(" \t\r\n").contains(text.back()))
        text.chop(1);
    Motion grid{QByteArray(qsizetype{MotionUtils::maskWidth} * MotionUtils::maskHeight, '\0'),
                MotionUtils::maskWidth,
                MotionUtils::maskHeight,
                {}};
    const auto width = MotionUtils::tryDecodeMask(
        text, std::span(grid.cells.data(), static_cast<size_t>(grid.cells.size())), error);
    if (!width)
        return {};
    // A text without a width is that of a mask which is the same everywhere.
    Motion mask{{}, *width == 1 ? grid.width : *width, grid.height, {}};
    for (int row = 0; row < grid.height; ++row)
        mask.cells += grid.row(row).first(mask.width);
    std::ranges::transform(mask.cells, mask.cells.begin(),
                           [](char cell) { return cell == 0 ? '\0' : '\xff'; });
    mask.heading = QStringLiteral("motion mask%1, %2 x %3 cells, %4 watched")
                       .arg(*width == 1 ? QLatin1String(" without width") : QLatin1String())
                       .arg(mask.width)
                       .arg(mask.height)
                       .arg(mask.cells.count('\xff'));
    drawMask(mask);
    return mask;
}

void drawDiffMap(Motion& map) {
    static constexpr std::array shades = {"░", "▒", "▓", "█"};
    for (int row = 0; row < map.height; ++row) {
        for (const char cell : map.row(row))
            map.drawing += cell == 0 ? "·" : shades[static_cast<uchar>(cell) / 64];
        map.drawing += '\n';
    }
    map.drawing += "motion: · none, ░ below 64, ▒ below 128, ▓ below 192, █ up to 255\n";
}

std::span<const uchar> bytesOf(const QByteArray& bytes) {
    return {reinterpret_cast<const uchar*>(bytes.constData()), static_cast<size_t>(bytes.size())};
}

std::span<uchar> bytesOf(QByteArray& bytes) {
    return {reinterpret_cast<uchar*>(bytes.data()), static_cast<size_t>(bytes.size())};
}

// The step of a coded difference map; 0 where the cells are not coded.
int stepOf(const QByteArray& coded) {
    static constexpr std::array steps = {2, 4, 8, 15};
    const bool isCoded = (static_cast<uchar>(coded[0]) & 0x80) != 0;
    return isCoded ? steps[static_cast<uchar>(coded[1]) >> 6] : 0;
}

// Why a difference map is too short.
QString shortfall(const QByteArray& coded) {
    if (coded.size() < 2)
        return QStringLiteral(": %1 of the 2 bytes before the cells").arg(coded.size());
    const int width = coded[0] & 0x7F;
    const int height = stepOf(coded) == 0 ? static_cast<uchar>(coded[1]) : coded[1] & 0x3F;
    return QStringLiteral(": %1 bytes for %2 x %3 cells").arg(coded.size()).arg(width).arg(height);
}

// How many bytes a difference map takes, which it does not say itself.
qsizetype codedSize(const Motion& map, int step) {
    QByteArray coded(maxInput, Qt::Uninitialized);
    const auto size = MotionUtils::tryEncodeDiffMap(bytesOf(map.cells), map.width, map.height, step,
                                                    bytesOf(coded));
    return static_cast<qsizetype>(size.value_or(0));
}

QString diffMapHeading(const Motion& map, const QByteArray& coded) {
    const int step = stepOf(coded);
    const auto still = map.cells.count('\0');
    QString text =
        QStringLiteral("difference map, %1 x %2 cells, %3, %4 with motion")
            .arg(map.width)
            .arg(map.height)
            .arg(step == 0 ? QStringLiteral("not coded") : QStringLiteral("step %1").arg(step))
            .arg(map.cells.size() - still);
    if (still < map.cells.size())
        text += QStringLiteral(", strongest %1").arg(std::ranges::max(bytesOf(map.cells)));
    if (const qsizetype behind = coded.size() - codedSize(map, step); behind > 0)
        text += QStringLiteral("; %1 bytes behind it").arg(behind);
    return text;
}

std::optional<Motion> readDiffMap(const QByteArray& coded, QString* error) {
    Motion map{QByteArray(maxDiffMapCells, '\0'), 0, 0, {}};
    const auto size = MotionUtils::tryDecodeDiffMap(bytesOf(coded), bytesOf(map.cells), error);
    if (!size) {
        *error += shortfall(coded);
        return {};
    }
    map.width = size->width;
    map.height = size->height;
    map.cells.truncate(qsizetype{map.width} * map.height);
    map.heading = diffMapHeading(map, coded);
    drawDiffMap(map);
    return map;
}

// False for a file that cannot be read, or has more bytes than there can be.
bool readInput(const QString& file, QByteArray* bytes, QString* error) {
    const auto device = openInput(file, error);
    if (!device)
        return false;
    QByteArray room(maxInput, Qt::Uninitialized);
    for (qint64 count = 1; count > 0 && bytes->size() <= maxInput;) {
        count = device->read(room.data(), room.size());
        bytes->append(room.constData(), std::max<qint64>(count, 0));
        if (count < 0)
            *error = QLatin1String("cannot read: ") + device->errorString();
    }
    if (bytes->size() > maxInput)
        *error = QStringLiteral("too long: more than %1 bytes").arg(maxInput);
    return error->isEmpty();
}

QByteArray pictureOf(const Motion& motion) {
    QByteArray pixels;
    for (int row = 0; row < motion.height; ++row) {
        QByteArray line;
        for (const char cell : motion.row(row))
            line += QByteArray(cellPixels, cell);
        pixels += line.repeated(cellPixels);
    }
    return greyPng(pixels, motion.width * cellPixels, motion.height * cellPixels);
}

bool writePicture(const Motion& motion, const QString& name, QString* error) {
    if (motion.cells.isEmpty()) {
        *error = QStringLiteral("there are no cells to make a picture of");
        return false;
    }
    const QByteArray picture = pictureOf(motion);
    QFile file(name);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
        if (file.write(picture) == picture.size())
            return true;
        file.remove();
    }
    *error = file.errorString();
    return false;
}

ExitStatus fail(const QString& name, const QString& reason) {
    PLOG_WARN(logClient(), nullptr, "%s: %s", qUtf8Printable(name), qUtf8Printable(reason));
    complain(name + QLatin1String(": ") + reason);
    return InputFailed;
}

}  // namespace

ExitStatus showMotion(const Options& options) {
    const QString& file = options.files.front();
    QByteArray bytes;
    QString error;
    if (!readInput(file, &bytes, &error))
        return fail(displayName(file), error);
    const bool isMask = options.action == Options::Action::ShowMask;
    const auto motion = isMask ? readMask(bytes, &error) : readDiffMap(bytes, &error);
    if (!motion)
        return fail(displayName(file), error);

    const Style style = outputStyle();
    Output output;
    output.buffer() = style.heading + motion->heading.toUtf8() + style.off + '\n' + motion->drawing;
    output.flush();
    if (output.failed())
        return fail(QStringLiteral("cannot write"), output.errorText());
    if (!options.pngFile.isEmpty() && !writePicture(*motion, options.pngFile, &error))
        return fail(displayName(options.pngFile), QLatin1String("cannot write: ") + error);
    return Success;
}

}  // namespace pylon::inspector
