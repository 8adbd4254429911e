#include "console.h"

#include <QtCore/QLocale>

#include <algorithm>
#include <cstdio>

namespace pylon::inspector {

namespace {

constexpr qsizetype largeOutput = qsizetype{64} * 1024;
constexpr qint64 firstUpdateMs = 700;
constexpr qint64 updateIntervalMs = 100;
constexpr int barWidth = 30;
constexpr char clearLine[] = "\r\x1b[K";

void writeError(const QByteArray& text) {
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stderr);
    std::fflush(stderr);
}

QString dataSize(qint64 bytes) {
    return QLocale::c().formattedDataSize(bytes, 1);
}

}  // namespace

bool Output::isLarge() const {
    return buffer_.size() >= largeOutput;
}

void Output::flush() {
    if (!ended())
        state_ = writeStandardOutput(buffer_, &error_);
    buffer_.resize(0);  // keeps its memory
}

StandardInput::StandardInput() {
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

qint64 StandardInput::readData(char* data, qint64 maxSize) {
    QString error;
    const qint64 count = readStandardInput(data, maxSize, &error);
    if (count < 0)
        setErrorString(error);
    return count;
}

Style outputStyle() {
    if (!qEnvironmentVariableIsEmpty("NO_COLOR") || !supportsColour(Stream::Output))
        return {};
    return {"\x1b[1m", "\x1b[32m", "\x1b[33m", "\x1b[0m"};
}

void complain(const QString& text) {
    writeError("pylon-inspect: " + text.toUtf8() + '\n');
}

Progress::Progress(qint64 total, bool enabled)
    : total_(total),
      enabled_(enabled && supportsColour(Stream::Error)),
      nextUpdate_(firstUpdateMs) {
    timer_.start();
}

void Progress::update(qint64 done) {
    if (!enabled_ || timer_.elapsed() < nextUpdate_)
        return;
    nextUpdate_ = timer_.elapsed() + updateIntervalMs;
    visible_ = true;
    QString text = dataSize(done);
    if (total_ > 0) {
        const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(total_));
        const int filled = static_cast<int>(part * barWidth);
        text = QStringLiteral("[%1%2] %3 %  %4 of %5")
                   .arg(QString(filled, QLatin1Char('#')),
                        QString(barWidth - filled, QLatin1Char('.')))
                   .arg(static_cast<int>(part * 100), 3)
                   .arg(text, dataSize(total_));
    }
    writeError(clearLine + text.toUtf8());
}

void Progress::hide() {
    if (!visible_)
        return;
    visible_ = false;
    writeError(clearLine);
}

void Progress::makeWay() {
    if (visible_ && isTerminal(Stream::Output))
        hide();
}

}  // namespace pylon::inspector
