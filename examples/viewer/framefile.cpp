#include "framefile.h"

#include <pylon/media/framereader.h>

#include <QtCore/QFile>

namespace pylon::viewer {

QList<Image> readFrames(const QString& path, QString* error) {
    error->clear();
    QList<Image> frames;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        *error = file.errorString();
        return frames;
    }
    FrameReader reader(file);
    for (;;) {
        switch (reader.next()) {
            case FrameReader::Status::Frame:
                frames.append(reader.image());
                break;
            case FrameReader::Status::NeedsData:
                if (!reader.fill())
                    reader.finish();
                break;
            case FrameReader::Status::End:
                return frames;
            case FrameReader::Status::Failed:
                *error = QStringLiteral("at byte %1: %2").arg(reader.offset()).arg(reader.reason());
                return frames;
        }
    }
}

}  // namespace pylon::viewer
