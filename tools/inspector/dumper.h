#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace pylon {
class FrameReader;
}

namespace pylon::inspector {

/// Passes frames of one recording to Image::dump(), and makes the folders for it. Not thread-safe:
/// std::cout is taken while a frame is dumped.
class Dumper {
public:
    /// @param recording the first of the three numbers in the names of the files.
    explicit Dumper(quint32 recording) : recording_(recording) {}

    /// Dumps the current frame of @p reader.
    /// @param number of the frame in the recording: the second number.
    /// @param offset of the frame in the recording, the low 32 bits of which are the third one.
    /// @return the line that Image::dump() prints, as printable().
    QByteArray add(const FrameReader& reader, qint64 number, qint64 offset);

    /// How many frames were dumped, and to where: a line.
    QByteArray text() const;
    /// How many frames could not be dumped, and why the first could not; empty if all could.
    QString errorText() const;

private:
    qint64 frames_ = 0;
    qint64 failures_ = 0;
    QString firstFailure_;
    quint32 recording_;
};

}  // namespace pylon::inspector
