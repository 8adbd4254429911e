#include <pylon/data/lyraurl.h>

#include <QtCore/QDebug>
#include <QtCore/QFile>
#include <QtCore/QHashFunctions>
#include <QtCore/QUrl>
#include <QtNetwork/QHostAddress>

namespace pylon {

namespace {

bool isLiteral(const QString& host, QAbstractSocket::NetworkLayerProtocol protocol) {
    return QHostAddress(host).protocol() == protocol;
}

}  // namespace

LyraUrl::LyraUrl(const QString& url, int defaultPort) {
    // Qt complains about file names with a null character in them.
    const bool isFile = !url.contains(QChar::Null) && QFile::exists(url);
    if (isFile || url.startsWith(QLatin1String("\\\\"))) {
        host_ = url;
        port_ = 0;
        return;
    }
    QString address = url;
    address.remove(QLatin1String("http://"));
    address.remove(QLatin1String("https://"));
    if (!QHostAddress(address).isNull()) {
        host_ = address;
        port_ = defaultPort;
        return;
    }
    const QUrl parsed(QLatin1String("http://") + address, QUrl::TolerantMode);
    host_ = parsed.host(QUrl::FullyDecoded);
    port_ = parsed.port(defaultPort);
}

bool LyraUrl::isIpv4() const {
    return isLiteral(host_, QAbstractSocket::IPv4Protocol);
}

bool LyraUrl::isIpv6() const {
    return isLiteral(host_, QAbstractSocket::IPv6Protocol);
}

QString LyraUrl::hostAndPort() const {
    const QString port = QString::number(port_);
    if (isIpv6())
        return QLatin1Char('[') + host_ + QLatin1String("]:") + port;
    if (port_ == 0 || host_.isEmpty())
        return host_;
    return host_ + QLatin1Char(':') + port;
}

size_t qHash(const LyraUrl& url, size_t seed) noexcept {
    return qHashMulti(seed, url.host_, url.port_);
}

QDebug operator<<(QDebug debug, const LyraUrl& url) {
    const QDebugStateSaver saver(debug);
    return debug.nospace().noquote() << "LyraUrl(" << url.hostAndPort() << ')';
}

}  // namespace pylon
