#include "logpane.h"

#include <pylon/log/logmanager.h>

#include <QtGui/QFontDatabase>

#include <algorithm>

#include "theme.h"

namespace pylon::viewer {

namespace {

constexpr int maxLines = 2000;

QString lineOf(const plog::LogItem& item) {
    if (item.rawMessage().isEmpty())
        return QString(item.toString()).remove(QLatin1Char('#')).trimmed();  // a banner
    constexpr int stampSize = 15;
    char stamp[stampSize] = {};
    const int length = item.timestamp().toDefaultString(stamp, stampSize);
    return QStringLiteral("%1  %2  %3  %4")
        .arg(QString::fromLatin1(stamp, std::max(length, 0)), -stampSize)
        .arg(QLatin1String(plog::logLevelShortName(item.logLevel())), -5)
        .arg(QString::fromUtf8(item.moduleName()), -8)
        .arg(QString::fromUtf8(item.rawMessage()));
}

QColor colourOf(int level) {
    if (level == plog::Error)
        return theme::recording;
    return level == plog::Warn ? theme::warning : theme::text;
}

}  // namespace

LogPane::LogPane(QWidget* parent) : QPlainTextEdit(parent), device_(new plog::LogCustom(this)) {
    setReadOnly(true);
    setLineWrapMode(NoWrap);
    setMaximumBlockCount(maxLines);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    connect(this, &LogPane::lineLogged, this, &LogPane::append, Qt::QueuedConnection);
    plog::LogManager::instance()->addLogDevice(device_);
}

LogPane::~LogPane() {
    plog::LogManager::instance()->removeLogDevice(device_);
}

void LogPane::logItem(const plog::LogItem& item) {
    emit lineLogged(static_cast<int>(item.logLevel()), lineOf(item));
}

void LogPane::append(int level, const QString& line) {
    QTextCharFormat format;
    format.setForeground(colourOf(level));
    setCurrentCharFormat(format);
    appendPlainText(line);
}

}  // namespace pylon::viewer
