#pragma once

#include <QtCore/QString>

#include <map>
#include <memory>

#include "audiotrack.h"

namespace pylon {
class FrameReader;
}

namespace pylon::inspector {

/// Writes what is in the frames of one recording into files of one folder. Their names consist of
/// numbers alone, and no file that is there is ever touched. Not thread-safe.
class Extractor {
public:
    /// The most tracks whose sound is decoded.
    static constexpr size_t maxTracks = 64;
    /// Longest silence in all files together, in samples: 100 MB.
    static constexpr qint64 maxSilence = 50'000'000;

    /// @param folder is made if it is not there.
    /// @param prefix starts the name of every file.
    Extractor(const QString& folder, const QString& prefix) : folder_(folder), prefix_(prefix) {}

    /// Takes the current frame of @p reader, which begins at @p offset of the recording.
    /// @return false, and errorText(), if that fails: it is not to be called again then.
    bool add(const FrameReader& reader, qint64 offset);
    /// Completes the WAV files. To be called last.
    bool finish();

    qint64 files() const { return files_; }
    const QString& errorText() const { return error_; }

private:
    QString pathOf(const QString& name) const;
    bool addSound(const FrameReader& reader);
    bool writePayload(const FrameReader& reader, qint64 offset);
    bool fail(const QString& path, const QString& reason);

    QString folder_;
    QString prefix_;
    bool folderIsThere_ = false;
    std::map<quint32, std::unique_ptr<AudioTrack>> tracks_;  // by channel
    qint64 silenceLeft_ = maxSilence;
    qint64 files_ = 0;
    QString error_;
};

}  // namespace pylon::inspector
