#include <pylon/security/serveruid.h>

#include <QtCore/QtEndian>

namespace pylon {

constexpr qsizetype uidSize = sizeof(quint64);

QString serverUIDToString(quint64 uid) {
    if (uid == 0)
        return {};
    char bytes[uidSize];
    qToLittleEndian(uid, bytes);
    return QString::fromUtf8(bytes, uidSize);
}

quint64 serverUIDFromString(const QString& text) {
    QString characters = correctServerUID(text);
    characters.resize(uidSize, u'\0');
    // No character takes less than a byte.
    return qFromLittleEndian<quint64>(characters.toUtf8().constData());
}

std::optional<quint64> tryServerUIDFromString(const QString& text) {
    const QByteArray bytes = correctServerUID(text).toUtf8();
    if (bytes.size() != uidSize)
        return std::nullopt;
    const auto uid = qFromLittleEndian<quint64>(bytes.constData());
    // What is no text was replaced on the way, and a byte order mark was dropped.
    bool isNumber = false;
    const qlonglong number = text.toLongLong(&isNumber);
    const bool isWhole =
        isNumber ? uid == static_cast<quint64>(number) : serverUIDToString(uid) == text;
    return isWhole ? std::optional(uid) : std::nullopt;
}

QString correctServerUID(const QString& text) {
    bool isNumber = false;
    const qlonglong number = text.toLongLong(&isNumber);
    return isNumber ? serverUIDToString(static_cast<quint64>(number)) : text;
}

}  // namespace pylon
