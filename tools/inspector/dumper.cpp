#include "dumper.h"

#include <pylon/media/framereader.h>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <iostream>
#include <sstream>

#include "text.h"

namespace pylon::inspector {

namespace {

// Image::dump() tells what became of a frame on std::cout alone.
QString dump(QByteArrayView bytes, const Image& frame, quint32 a, quint32 b, quint32 c) {
    std::ostringstream output;
    std::streambuf* const standardOutput = std::cout.rdbuf(output.rdbuf());
    Image::dump(bytes.data(), static_cast<quint32>(bytes.size()), frame, a, b, c);
    std::cout.rdbuf(standardOutput);
    return QString::fromStdString(output.str()).chopped(1);
}

// The name of the file, which is what follows its length and two blanks.
QString nameIn(const QString& line) {
    const QString mark = QStringLiteral("size=");
    const qsizetype length = line.indexOf(mark) + mark.size();
    return line.sliced(line.indexOf(QLatin1String("  "), length) + 2);
}

QString openFailure(const QString& folder, const QString& name) {
    if (!QDir(folder).exists())
        return QStringLiteral("the folder cannot be made");
    if (name.contains(u'/') || name.contains(QDir::separator()))
        return QStringLiteral("the camera's name leads to another folder");
    QFile file(folder + name);
    (void)file.open(QIODevice::WriteOnly);  // once more, for the reason
    return file.errorString();
}

QString shown(const QString& path) {
    return printable(QDir::toNativeSeparators(path));
}

}  // namespace

QByteArray Dumper::add(const FrameReader& reader, qint64 number, qint64 offset) {
    const Image frame = reader.image();
    const QString folder = Image::dumpFolder(frame);
    QDir().mkpath(folder);
    const QString line = dump(reader.bytes(), frame, recording_, static_cast<quint32>(number),
                              static_cast<quint32>(offset));
    const QString name = nameIn(line);
    QString failure;
    if (line.startsWith(QLatin1String("not ")))
        failure = openFailure(folder, name);
    else if (QFileInfo(folder + name).size() != reader.bytes().size())
        failure = QStringLiteral("not all of it can be written");

    if (failure.isEmpty())
        ++frames_;
    else if (++failures_ == 1)
        firstFailure_ = shown(folder + name) + QLatin1String(": ") + failure;
    return printable(line).toUtf8() + '\n';
}

QByteArray Dumper::text() const {
    return QByteArray::number(frames_) + " dumped to " +
           shown(Image::dumpFolder(Image())).toUtf8() + '\n';
}

QString Dumper::errorText() const {
    return failures_ == 0 ? QString()
                          : QStringLiteral("%1 not dumped, the first as %2")
                                .arg(QString::number(failures_), firstFailure_);
}

}  // namespace pylon::inspector
