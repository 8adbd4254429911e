#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QtEndian>

// A network frame built byte by byte, also one that no server would send.
struct WireFrame {
    quint16 camera = 1;
    quint16 track = 1;
    quint64 time = 538417800000;  // 2026-11-15 07:00:00 UTC
    quint8 zone = 21;             // CET
    qint8 quarters = 4;
    quint8 typeByte = 'V' & 0x3F;
    quint8 flags = 0;
    quint8 rate = 5;
    QByteArray extensions = {};
    int payload = 0;

    operator QByteArray() const {
        QByteArray bytes(20, Qt::Uninitialized);
        const auto size = static_cast<quint32>(20 + extensions.size() + payload);
        qToLittleEndian<quint32>(0x80000000U | size, bytes.data());
        qToLittleEndian<quint16>(camera, bytes.data() + 4);
        qToLittleEndian<quint16>(track, bytes.data() + 6);
        qToLittleEndian<quint64>(
            time | quint64{zone} << 48 | quint64{static_cast<quint8>(quarters)} << 56,
            bytes.data() + 8);
        bytes[16] = static_cast<char>(typeByte);
        bytes[17] = static_cast<char>(flags);
        bytes[18] = static_cast<char>(rate);
        bytes[19] = static_cast<char>(extensions.size());
        return bytes + extensions + QByteArray(payload, 'p');
    }
};

// Server and camera name, then the fields of the other slots as they are.
inline QByteArray extensionBlock(const QByteArray& server, const QByteArray& camera,
                                 const QByteArray& rest = {}) {
    return server + '\0' + camera + '\0' + rest;
}
