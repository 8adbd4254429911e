#pragma once

#include <pylon/media/image.h>

#include "wavefile.h"

namespace pylon::inspector {

/// The sound of one camera and track on its way into a WAV file, placed by the time stamps of its
/// frames. Not thread-safe.
class AudioTrack {
public:
    /// Longest silence for one gap, in seconds.
    static constexpr int maxSilence = 60;
    /// Sound that comes again up to this many seconds late is cut out.
    static constexpr int maxOverlap = 10;

    /// Whether the samples of @p frame can be decoded: it is an audio frame, not encrypted, of a
    /// known format.
    static bool canDecode(const Image& frame);

    /// The track that begins with @p first, which canDecode(), at the rate of that frame.
    AudioTrack(const QString& path, const Image& first);

    WaveFile& file() { return file_; }

    /// Appends the sound of @p frame, which canDecode(), resampled to the rate of the file.
    ///
    /// A gap before it is filled with silence, of at most #maxSilence. What the file has already
    /// is left out; sound from further back than #maxOverlap follows what is there. Deviations of
    /// less than 30 ms are ignored.
    /// @param silenceLeft how many samples of silence may still be written; what is, is taken off.
    /// @return false if the file cannot be written.
    bool add(const Image& frame, qint64& silenceLeft);

private:
    WaveFile file_;
    qint64 origin_;  // time of sample originSample_, 1/300 s
    qint64 originSample_ = 0;
};

}  // namespace pylon::inspector
