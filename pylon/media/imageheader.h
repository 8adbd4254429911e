#pragma once

#include <pylon/export.h>
#include <pylon/media/imageheaderbase.h>

#include <QtCore/QMetaType>
#include <QtCore/QSharedPointer>

class QDebug;

namespace pylon {

class Image;

/// A handle to a frame header without its frame. Copies share one header object: what is loaded
/// through one handle is seen through all. A default-constructed handle is null.
///
/// Thread-safety: handles may be copied and destroyed on different threads; the header object is
/// not synchronised.
class PYLON_EXPORT ImageHeader {
public:
    /// A null handle.
    ImageHeader() = default;

    /// A new header object with a copy of all header fields of @p image.
    explicit ImageHeader(const Image& image);

    /// Parses the header at the start of @p data, creating the header object of a null handle
    /// first. @p data may be a whole frame; its length is not compared with the size field.
    /// @return the number of bytes before the payload.
    /// @throws std::runtime_error as ImageHeaderBase::loadFromData().
    int loadFromData(const QByteArray& data);

    /// Stores side data of the client, creating a default header first when the handle is null.
    void setAttachedData(const QByteArray& data);

    /// Fills those slots that are empty here from @p other. A null @p other changes nothing; a
    /// null handle gets a default header first.
    void addAbsentExtensionsFrom(const ImageHeader& other);

    /// True when there is no header object.
    bool isNull() const noexcept;
    /// Bits 0-15 camera id, bits 16-31 track id; 0 when null.
    quint32 channel() const noexcept;
    /// The sender asks for a new key; false when null.
    bool isNewKeyRequired() const noexcept;

    /// The content of @p slot, valid until the header changes. Do not call it on a null handle:
    /// debug builds assert, others return an empty array.
    const QByteArray& extension(ImageHeaderExtension slot) const;

    /// Writes `ImageHeader(channel 10003)`, in hexadecimal, or `ImageHeader(null)`.
    friend PYLON_EXPORT QDebug operator<<(QDebug debug, const ImageHeader& header);

private:
    friend class Image;

    ImageHeaderBase& ensureHeader();

    QSharedPointer<ImageHeaderBase> header_;
};

}  // namespace pylon

Q_DECLARE_METATYPE(pylon::ImageHeader)
