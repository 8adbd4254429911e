#pragma once

#include <pylon/export.h>
#include <pylon/media/image.h>
#include <pylon/media/imageheaderbase.h>

#include <QtCore/QByteArray>

namespace pylon {

/// The record of one media frame: header and payload. Image is the handle to it.
///
/// Thread-safety: not synchronised; do not change a record that another thread reads.
class PYLON_EXPORT ImageBase : public ImageHeaderBase {
public:
    /// A default header and an empty payload.
    ImageBase() = default;

    /// A copy of @p header and an empty payload.
    explicit ImageBase(const ImageHeaderBase& header);

    /// Parses @p frame, a whole frame, and takes its payload.
    /// @throws std::runtime_error as load().
    explicit ImageBase(const QByteArray& frame);

    ImageBase(const ImageBase& other) = default;
    ImageBase& operator=(const ImageBase& other) = default;
    ~ImageBase() override;

    /// Parses the header of @p frame into this record as ImageHeaderBase::loadFromData() does, and
    /// takes the payload behind it: the only copy made of those bytes.
    /// @throws std::runtime_error as ImageHeaderBase::loadFromData(), and "Size mismatch" when
    ///     @p frame is not exactly as long as its header says. The payload is then empty, and the
    ///     header holds what had been parsed.
    void load(const QByteArray& frame);

    /// The length of #payload, its low 32 bits.
    quint32 payloadLength() const override;

    /// Coded video, audio samples or event data.
    QByteArray payload;
    /// Result of checking the origin of the frame.
    Image::AuthenticationState authenticationState = Image::AuthenticationUnknown;

private:
    void take(const QByteArray& frame);
};

}  // namespace pylon
