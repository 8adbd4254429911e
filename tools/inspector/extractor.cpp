#include "extractor.h"

#include <pylon/media/framereader.h>
#include <QtCore/QDir>

#include "text.h"

namespace pylon::inspector {

namespace {

bool isXml(QByteArrayView payload) {
    if (payload.startsWith("\xef\xbb\xbf"))
        payload = payload.sliced(3);
    return payload.trimmed().startsWith('<');
}

const char* suffixOf(const Image& image, QByteArrayView payload) {
    if (image.isEncrypted())
        return "bin";
    if (payload.startsWith("\xff\xd8"))
        return "jpg";
    return isXml(payload) ? "xml" : "bin";
}

}  // namespace

QString Extractor::pathOf(const QString& name) const {
    return QDir(folder_).filePath(prefix_ + name);
}

bool Extractor::fail(const QString& path, const QString& reason) {
    error_ = QStringLiteral("cannot extract to %1: %2")
                 .arg(printable(QDir::toNativeSeparators(path)), reason);
    return false;
}

bool Extractor::add(const FrameReader& reader, qint64 offset) {
    if (reader.payload().isEmpty())
        return true;
    if (!folderIsThere_ && !QDir().mkpath(folder_))
        return fail(folder_, QStringLiteral("the folder cannot be made"));
    folderIsThere_ = true;
    const Image& image = reader.headerImage();
    const bool hasTrack = tracks_.contains(image.channel());
    if (AudioTrack::canDecode(image) && (hasTrack || tracks_.size() < maxTracks))
        return addSound(reader);
    return writePayload(reader, offset);
}

bool Extractor::addSound(const FrameReader& reader) {
    const Image image = reader.image();
    const QString path =
        pathOf(QStringLiteral("camera%1-track%2.wav").arg(image.cameraId()).arg(image.trackId()));
    auto& track = tracks_[image.channel()];
    if (!track) {
        track = std::make_unique<AudioTrack>(path, image);
        if (!track->file().create()) {
            fail(path, track->file().errorText());
            tracks_.erase(image.channel());
            return false;
        }
        ++files_;
    }
    return track->add(image, silenceLeft_) || fail(path, track->file().errorText());
}

bool Extractor::writePayload(const FrameReader& reader, qint64 offset) {
    const Image& image = reader.headerImage();
    const QByteArrayView payload = reader.payload();
    const QString path = pathOf(QStringLiteral("%1-camera%2.%3")
                                    .arg(offset, 12, 10, QLatin1Char('0'))
                                    .arg(image.cameraId())
                                    .arg(QLatin1String(suffixOf(image, payload))));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        return fail(path, file.errorString());
    if (file.write(payload.data(), payload.size()) != payload.size()) {
        fail(path, file.errorString());
        file.remove();
        return false;
    }
    ++files_;
    return true;
}

bool Extractor::finish() {
    for (auto& [channel, track] : tracks_) {
        WaveFile& file = track->file();
        if (!file.finish() && error_.isEmpty())
            fail(file.path(), file.errorText());
    }
    return error_.isEmpty();
}

}  // namespace pylon::inspector
