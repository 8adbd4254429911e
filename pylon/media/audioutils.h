#pragma once

#include <pylon/export.h>
#include <pylon/media/image.h>

#include <QtCore/QByteArray>

namespace pylon {

/// What an audio frame, one of type 'a', carries: the low four bits of its flags. All formats are
/// mono; samples of linear PCM are 16-bit signed in host byte order.
enum AudioSubTypes : int {
    AudioUnknown = 0,   ///< Anything; also what values above 5 mean.
    Audio16B16KHZ = 1,  ///< Linear PCM, 16 kHz.
    Audio16B8KHZ = 2,   ///< Linear PCM, 8 kHz.
    AudioG711U = 3,     ///< ITU-T G.711 mu-law, 8 kHz, one byte a sample.
    AudioG711A = 4,     ///< ITU-T G.711 A-law, 8 kHz, one byte a sample.
    AudioG726X32 = 5    ///< ITU-T G.726 at 32 kbit/s; named, but not converted here.
};

/// Names, durations and conversions of audio frames.
///
/// Conversions either return the frame they were given (the same record, see Image) or a new one
/// with a copy of its header. Of that header only the sub-type in the flags is adapted; the size
/// fields still describe the frame as it was received. The other flag bits stay.
///
/// Thread-safety: no state; a frame must not be changed elsewhere during a call.
class PYLON_EXPORT AudioUtils {
public:
    /// The sub-type of @p frame as text, such as "G711U"; "Unknown Audio" when it has no name. A
    /// static text. The frame's type is not looked at.
    static const char* audioFormatName(const Image& frame) noexcept;

    /// The highest sub-type that is fully supported: AudioG711A.
    static int maxSubType() noexcept;

    /// Bytes a second. 32000 for unknown sub-types, and for AudioG726X32 too.
    static int bytesRate(AudioSubTypes subType) noexcept;

    /// Time that @p byteCount bytes take, in units of which there are @p unitsPerSecond to the
    /// second, truncated. The product of the two numbers wraps as a signed 32-bit number: in
    /// milliseconds, the longest G.711 block is one of 2,147,483 bytes (4.5 minutes).
    static int duration(int byteCount, AudioSubTypes subType, int unitsPerSecond) noexcept;
    /// The same for the payload of @p frame; 0 when it is not an audio frame.
    static int duration(const Image& frame, int unitsPerSecond) noexcept;
    /// The duration of @p frame in 1/300 s, the unit of frame times.
    static int duration_thrifties(const Image& frame) noexcept;

    /// Expands a G.711 frame to linear PCM of 8 kHz. Any other frame is returned as it is, and so
    /// is one whose samples would take more than 2 GiB.
    static Image decode(const Image& frame);

    /// Converts an audio frame whose sub-type is above @p target down the list of AudioSubTypes:
    /// G.711 to PCM of 8 kHz, and if that is still above @p target, on to 16 kHz by linear
    /// interpolation. Any other frame is returned as it is.
    ///
    /// The bytes of AudioG726X32 and of sub-types without name are taken for PCM samples. A byte
    /// that is no whole sample is left out.
    static Image decode(int target, Image frame);

    /// Returns @p frame: there is no conversion up the list.
    static Image encode(int target, const Image& frame);

    /// Compresses samples of linear PCM with the law of AudioG711U or AudioG711A, see
    /// compressG711(). For any other sub-type the result is @p pcm.
    static QByteArray encode(AudioSubTypes subType, const QByteArray& pcm);
};

}  // namespace pylon
