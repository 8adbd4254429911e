#include "recording.h"

#include <pylon/log/logmacros.h>

#include <QtCore/QFileInfo>
#include <QtCore/QMap>

#include <algorithm>

#include "framefile.h"

namespace pylon::viewer {

namespace {

plog::LogClient<plog::Playback> client;

constexpr quint8 video = 'V';
constexpr quint8 audio = 'a';
constexpr quint8 event = 'E';

bool isEarlier(const Image& left, const Image& right) {
    return left.time() < right.time();
}

void sortIntoCameras(const QList<Image>& frames, Recording& recording) {
    QMap<quint32, Camera> cameras;
    for (const Image& frame : frames) {
        if (frame.type() == event)
            recording.events.append(frame);
        if (frame.type() != video && frame.type() != audio)
            continue;
        Camera& camera = cameras[frame.cameraId()];
        camera.id = frame.cameraId();
        if (camera.name.isEmpty())
            camera.name = frame.cameraName();
        if (frame.type() == video)
            camera.pictures.append(frame);
    }
    for (Camera& camera : cameras) {
        std::ranges::stable_sort(camera.pictures, isEarlier);
        if (camera.name.isEmpty())
            camera.name = QStringLiteral("Camera %1").arg(camera.id);
    }
    std::ranges::stable_sort(recording.events, isEarlier);
    recording.cameras = cameras.values();
}

void logContents(const Camera& camera) {
    const QByteArray name = camera.name.toUtf8();
    if (camera.pictures.isEmpty()) {
        PLOG_INFO(client, nullptr, "Camera %u, %s: sound only", camera.id, name.constData());
        return;
    }
    const auto total = static_cast<long long>(camera.pictures.size());
    PLOG_INFO(client, nullptr, "Camera %u, %s: %lld pictures", camera.id, name.constData(), total);
    const auto encrypted =
        static_cast<long long>(std::ranges::count_if(camera.pictures, &Image::isEncrypted));
    if (encrypted > 0)
        PLOG_WARN(client, nullptr, "Camera %u, %s: %lld of %lld pictures are encrypted", camera.id,
                  name.constData(), encrypted, total);
}

}  // namespace

const Image* Camera::pictureAt(qint64 time) const {
    const auto later = std::ranges::upper_bound(pictures, time, {}, &Image::time);
    return later == pictures.begin() ? nullptr : &*(later - 1);
}

std::optional<Recording> Recording::load(const QString& path) {
    const QByteArray shownPath = path.toUtf8();
    QString error;
    const QList<Image> frames = readFrames(path, &error);
    if (!error.isEmpty())
        PLOG_ERROR(client, nullptr, "%s: %s", shownPath.constData(), error.toUtf8().constData());
    if (frames.isEmpty()) {
        if (error.isEmpty())
            PLOG_ERROR(client, nullptr, "%s is empty", shownPath.constData());
        return std::nullopt;
    }

    Recording recording;
    recording.fileName = QFileInfo(path).fileName();
    const auto [first, last] = std::ranges::minmax(frames, isEarlier);
    recording.begin = first.time();
    recording.end = last.time();
    sortIntoCameras(frames, recording);
    PLOG_INFO(client, nullptr, "Opened %s: %lld frames, %.2f s",
              recording.fileName.toUtf8().constData(), static_cast<long long>(frames.size()),
              static_cast<double>(recording.end - recording.begin) / 300);
    for (const Camera& camera : recording.cameras)
        logContents(camera);
    return recording;
}

}  // namespace pylon::viewer
