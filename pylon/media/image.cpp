#include <pylon/media/image.h>

#include <pylon/media/imagebase.h>
#include <pylon/media/imageheader.h>
#include <pylon/media/lyraimageheaderparser.h>
#include <pylon/time/timeconversion.h>

#include <algorithm>
#include <utility>

namespace pylon {

namespace {

constexpr quint8 notIFrameFlag = 0x08;
constexpr quint8 recordingFlag = 0x80;

constexpr char hiddenMark = 'h';

QByteArray& slotOf(ImageBase& image, ImageHeaderExtension slot) {
    return image.extensions[static_cast<qsizetype>(slot)];
}

}  // namespace

Image::Image() : image_(std::make_shared<ImageBase>()) {}

Image::Image(const ImageHeader& header, int payloadSize)
    : image_(header.header_ ? std::make_shared<ImageBase>(*header.header_)
                            : std::make_shared<ImageBase>()) {
    Q_ASSERT(!header.isNull());
    image_->payload = QByteArray(std::max(payloadSize, 0), Qt::Uninitialized);
}

Image::Image(const QByteArray& data) : image_(std::make_shared<ImageBase>(data)) {}

Image::Image(std::shared_ptr<ImageBase> image) : image_(std::move(image)) {}

void Image::loadFromData(const QByteArray& data) {
    image_->load(data);
}

Image Image::clone() const {
    return Image(std::make_shared<ImageBase>(*image_));
}

qint64 Image::time() const {
    return image_->time;
}

void Image::setTime(qint64 time) {
    image_->time = time;
}

quint64 Image::id() const {
    return image_->id;
}

void Image::setId(quint64 id) const {
    image_->id = id;
}

quint64 Image::ServerUid() const {
    return image_->serverUid;
}

void Image::setServerUid(quint64 uid) {
    image_->serverUid = uid;
}

quint32 Image::serverId() const {
    return image_->serverId;
}

void Image::setServerId(quint32 id) {
    image_->serverId = id;
}

quint32 Image::sortId() const {
    return image_->sortId;
}

void Image::setSortId(quint32 id) {
    image_->sortId = id;
}

quint16 Image::streamId() const {
    return image_->streamId;
}

void Image::setStreamId(quint16 id) {
    image_->streamId = id;
}

quint32 Image::channel() const {
    return image_->channel;
}

void Image::setChannel(quint32 channel) {
    image_->channel = channel;
}

quint32 Image::cameraId() const {
    return image_->channel & 0xFFFF;
}

quint32 Image::trackId() const {
    return image_->channel >> 16;
}

qint64 Image::linkedStreamNextTimeStamp() const {
    return image_->linkedStreamNextTimeStamp;
}

void Image::setLinkedStreamNextTimeStamp(qint64 time) {
    image_->linkedStreamNextTimeStamp = time;
}

quint8 Image::type() const {
    return image_->type;
}

void Image::setType(quint8 type) {
    image_->type = type;
}

quint8 Image::rate() const {
    return image_->rate;
}

quint8 Image::flags() const {
    return image_->flags;
}

void Image::setFlags(quint8 flags) {
    image_->flags = flags;
}

void Image::addFlags(quint8 flags) {
    image_->flags |= flags;
}

void Image::clearFlags(quint8 flags) {
    image_->flags &= static_cast<quint8>(~flags);
}

bool Image::iframe() const {
    return (image_->flags & notIFrameFlag) == 0;
}

void Image::setIFrame() {
    clearFlags(notIFrameFlag);
}

bool Image::isRecording() const {
    return (image_->flags & recordingFlag) != 0;
}

bool Image::isEncrypted() const {
    return image_->encrypted;
}

void Image::setEncrypted(bool encrypted) {
    image_->encrypted = encrypted;
}

bool Image::receivedEncrypted() const {
    return image_->receivedEncrypted;
}

Image::AuthenticationState Image::authenticationState() const {
    return image_->authenticationState;
}

void Image::setAuthenticationState(AuthenticationState state) {
    image_->authenticationState = state;
}

bool Image::isNull() const {
    return image_->totalSize == 0;
}

qint64 Image::imageClientSystemLoadTimeMSecsSinceEpoch() const {
    return image_->imageClientSystemLoadTimeMSecsSinceEpoch;
}

qint64 Image::elapsedUSecsSinceImageLoad() const {
    return image_->loadTimer.elapsedUSecs();
}

const QByteArray& Image::payload() const {
    return image_->payload;
}

void Image::setPayload(const QByteArray& data) {
    image_->payload = data;
    LyraImageHeaderParser::createParser(ImageHeaderVersion::V4)->updateTotalSize(*image_);
}

char* Image::payloadData() {
    return image_->payload.data();
}

const char* Image::payloadData() const {
    return image_->payload.constData();
}

quint32 Image::payloadSize() const {
    return image_->payloadLength();
}

quint32 Image::totalSize() const {
    return image_->totalSize;
}

quint32 Image::imageSize() const {
    return image_->totalSize - image_->headerSize;
}

const QByteArray& Image::extension(ImageHeaderExtension slot) const {
    return image_->extension(slot);
}

void Image::setExtensions(const ImageHeader& header) {
    Q_ASSERT(!header.isNull());
    if (!header.isNull())
        image_->extensions = header.header_->extensions;
}

QByteArray Image::attachedData() const {
    return image_->attachedData;
}

QString Image::cameraName() const {
    return QString::fromUtf8(extension(ImageHeaderExtension::CameraName));
}

QString Image::serverName() const {
    return QString::fromUtf8(extension(ImageHeaderExtension::ServerName));
}

bool Image::isHidden() const {
    return extension(ImageHeaderExtension::Marks).contains(hiddenMark);
}

void Image::setHiddenFlag(bool hidden) {
    if (hidden == isHidden())
        return;
    QByteArray& marks = slotOf(*image_, ImageHeaderExtension::Marks);
    if (hidden)
        marks.append(hiddenMark);
    else
        marks.removeIf([](char mark) { return mark == hiddenMark; });
}

bool Image::isDewarping() const {
    return !extension(ImageHeaderExtension::Dewarping).isEmpty();
}

int Image::linkedAudioCameraID() const {
    const QByteArray& slot = extension(ImageHeaderExtension::LinkedAudio);
    if (slot.isEmpty())
        return -1;
    const auto camera = static_cast<quint8>(slot.front());
    return camera != 0 ? camera : static_cast<int>(cameraId());
}

QString Image::toString() const {
    return QStringLiteral("Image: { Camera: '") + cameraName() + QStringLiteral("'. Channel: ") +
           QString::number(channel(), 16) + QStringLiteral(". Payload Size: ") +
           QString::number(payloadSize()) + QStringLiteral(". Flags: ") +
           QString::number(flags(), 2) + QStringLiteral(". Time: ") + QString::number(time()) +
           QStringLiteral(". Type: '") + QChar(type()) + QStringLiteral("'. Rate: ") +
           QString::number(rate()) + QStringLiteral(" }");
}

QString Image::idToString() const {
    const QString timeOfDay = msecsToString(static_cast<quint64>(timestampMSec()),
                                            QStringLiteral("hh:mm:ss.zzz"), TimeZone());
    return QStringLiteral("[ id: ") + QString::number(id()) + QStringLiteral(", time: ") +
           QString::number(time()) + QStringLiteral(" (") + timeOfDay + QStringLiteral(") ]");
}

void Image::generateNetworkImageHeader(QByteArray& out, ImageHeaderVersion version) const {
    LyraImageHeaderParser::createParser(version)->writeHeader(*image_, out);
}

void Image::generateNetworkImage(QByteArray& out, ImageHeaderVersion version) const {
    const auto parser = LyraImageHeaderParser::createParser(version);
    parser->writeHeader(*image_, out);
    out.reserve(out.size() + image_->payload.size());
    out.append(image_->payload);
    parser->patchSize(out);
}

}  // namespace pylon
