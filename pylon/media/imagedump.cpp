#include <pylon/media/image.h>
#include <pylon/media/lyraimageheaderparser.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <iostream>
#include <numeric>

namespace pylon {

namespace {

constexpr quint32 eventCameraId = 255;

constexpr ImageHeaderExtension summedSlots[] = {
    ImageHeaderExtension::Dewarping, ImageHeaderExtension::Text6, ImageHeaderExtension::ServerName,
    ImageHeaderExtension::CameraName};

quint64 byteSum(const QByteArray& bytes) {
    const auto add = [](qint64 sum, char byte) { return sum + static_cast<qint8>(byte); };
    return static_cast<quint64>(std::accumulate(bytes.cbegin(), bytes.cend(), qint64{0}, add));
}

// Builds a file name from elements that are each followed by a separator.
class NameBuilder {
public:
    template <typename Integer>
    NameBuilder& number(Integer value, char separator = '-') {
        return text(QString::number(value), separator);
    }

    NameBuilder& text(const QString& value, char separator = '-') {
        name_ += value;
        name_ += QLatin1Char(separator);
        return *this;
    }

    NameBuilder& flag(bool value) { return number(value ? 1 : 0); }

    QString finish(const QString& ending) const { return name_ + ending; }

private:
    QString name_;
};

void addHeaderFields(NameBuilder& name, const Image& frame) {
    name.number(frame.time(), '_').number(int{frame.timeZoneOffset()}, '_');
    name.text(QString::fromStdString(frame.timeZoneName()));
    name.text(QChar(frame.type())).text(QLatin1String(frame.iframe() ? "i" : "p"));
    name.number(frame.channel()).number(frame.cameraId()).number(frame.trackId());
    name.number(uint{frame.rate()}).number(uint{frame.flags()});
    name.flag(frame.isEncrypted()).flag(frame.receivedEncrypted());
}

void addSlots(NameBuilder& name, const Image& frame) {
    for (int slot = 0; slot < imageHeaderExtensionCount; ++slot)
        name.number(frame.extension(static_cast<ImageHeaderExtension>(slot)).size());
    name.number(frame.linkedAudioCameraID());
    for (const ImageHeaderExtension slot : summedSlots)
        name.number(byteSum(frame.extension(slot)));
}

QString dumpName(quint32 size, const Image& frame, quint32 a, quint32 b, quint32 c) {
    NameBuilder name;
    name.text(QStringLiteral("img")).number(a, '_').number(b, '_').number(c);
    addHeaderFields(name, frame);
    name.number(size).number(frame.imageSize()).number(frame.payloadSize());
    name.number(byteSum(frame.payload()));
    addSlots(name, frame);
    return name.finish(frame.cameraName().replace(u' ', u'_') + QStringLiteral(".bin"));
}

// Names come from the network: one that leads elsewhere must not be followed.
bool staysInFolder(const QString& name) {
    return !name.contains(u'/') && !name.contains(QDir::separator());
}

void report(const char* outcome, const QString& name) {
    const QByteArray text = name.toUtf8();
    const QByteArray line =
        outcome + QByteArray(" filename size=") + QByteArray::number(text.size()) + "  " + text;
    std::cout.write(line.constData(), line.size()) << std::endl;
}

}  // namespace

void Image::dump(const char* data, quint32 size, const Image& frame, quint32 a, quint32 b,
                 quint32 c) {
    const QString name = dumpName(size, frame, a, b, c);
    QFile file(dumpFolder(frame) + name);
    if (!staysInFolder(name) || !file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        report("not dumped", name);
        return;
    }
    report("    dumped", name);
    file.write(data, size);
}

QString Image::dumpFolder(const Image& frame) {
    const QString folder = QDir::homePath() + QStringLiteral("/TestServerData/unit/images/");
    return frame.cameraId() == eventCameraId ? folder + QStringLiteral("event/") : folder;
}

bool Image::undump(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    loadFromData(file.readAll());
    return true;
}

quint32 Image::determineSizeFromFile(QFile& file, quint32& size) const {
    const QByteArray word = file.peek(sizeof(quint32));
    const auto version = LyraImageHeaderParser::detectVersion(word);
    LyraImageHeaderParser::createParser(version)->readSize(file, size);
    return size;
}

}  // namespace pylon
