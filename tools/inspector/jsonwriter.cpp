#include "jsonwriter.h"

#include <pylon/media/framereader.h>

#include "text.h"

namespace pylon::inspector {

namespace {

// `key` comes with its quotes, colon and the comma before it, so that a line is one run of appends.
void appendField(QByteArray& out, QByteArrayView key, qint64 number) {
    out.append(key);
    appendNumber(out, number);
}

void appendField(QByteArray& out, QByteArrayView key, bool value) {
    out.append(key);
    out.append(value ? "true" : "false");
}

void appendSlots(QByteArray& out, const Image& image) {
    out.append(",\"slots\":[");
    for (int slot = 0; slot < imageHeaderExtensionCount; ++slot) {
        out.append(slot == 0 ? "\"" : ",\"");
        out.append(image.extension(static_cast<ImageHeaderExtension>(slot)).toHex());
        out.append('"');
    }
    out.append(']');
}

}  // namespace

void appendJson(QByteArray& out, const FrameReader& reader, qint64 offset) {
    const Image& image = reader.headerImage();
    const char16_t type = image.type();
    appendField(out, "{\"offset\":", offset);
    appendField(out, ",\"size\":", qint64{image.totalSize()});
    appendField(out, ",\"time300\":", image.time());
    appendField(out, ",\"timestampMs\":", image.timestampMSec());
    out.append(",\"utc\":\"");
    appendDateTime(out, image.timestampMSec(), 'T');
    out.append("Z\",\"zone\":");
    appendJsonString(out, QByteArrayView(image.timeZoneName()));
    appendField(out, ",\"zoneQuarters\":", qint64{image.timeZoneOffset()});
    appendField(out, ",\"camera\":", qint64{image.cameraId()});
    appendField(out, ",\"track\":", qint64{image.trackId()});
    out.append(",\"type\":");
    appendJsonString(out, QStringView(&type, 1));
    appendField(out, ",\"key\":", image.iframe());
    appendField(out, ",\"recording\":", image.isRecording());
    appendField(out, ",\"hidden\":", image.isHidden());
    appendField(out, ",\"dewarped\":", image.isDewarping());
    appendField(out, ",\"encrypted\":", image.isEncrypted());
    appendField(out, ",\"newKeyRequired\":", reader.header().isNewKeyRequired());
    appendField(out, ",\"linkedAudioCamera\":", qint64{image.linkedAudioCameraID()});
    appendField(out, ",\"rate\":", qint64{image.rate()});
    appendField(out, ",\"flags\":", qint64{image.flags()});
    out.append(",\"server\":");
    appendJsonString(out, QByteArrayView(image.extension(ImageHeaderExtension::ServerName)));
    out.append(",\"cameraName\":");
    appendJsonString(out, QByteArrayView(image.extension(ImageHeaderExtension::CameraName)));
    appendField(out, ",\"payloadSize\":", qint64{image.imageSize()});
    appendSlots(out, image);
    out.append("}\n");
}

}  // namespace pylon::inspector
