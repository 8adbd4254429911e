#pragma once

#include <pylon/export.h>

#include <QtCore/QMetaType>
#include <QtCore/QString>

class QDebug;

namespace pylon {

/// Port of a recording server whose address names none.
inline constexpr int defaultServerPort = 8601;

/// The address of a server as users type it, reduced to a host and a port; or a local file.
///
///     pylon::LyraUrl("10.1.2.3").hostAndPort();           // 10.1.2.3:8601
///     pylon::LyraUrl("http://Recorder7:9000").host();     // recorder7
///     pylon::LyraUrl("[fe80::1]:81").host();              // fe80::1
///     pylon::LyraUrl("\\\\nas\\video").isLocalFile();     // true
///
/// Thread-safety: a plain value; objects are independent of each other.
class PYLON_EXPORT LyraUrl {
public:
    /// Takes @p url apart. Looks whether a file of that name exists, so it touches the disk.
    ///
    /// The first that fits counts:
    /// - the name of an existing file or folder, or a text that begins with two backslashes (a UNC
    ///   path), is a local file: host is the whole text, port 0;
    /// - "http://" and "https://" are removed wherever they stand, and do not tell the port; then
    ///   a literal IPv4 or IPv6 address without brackets and port, as QHostAddress reads it, is
    ///   the host as it stands, with @p defaultPort;
    /// - anything else is read by QUrl in its tolerant way as an address with an optional port:
    ///   host names become lower case, brackets go, user name, path and query are dropped.
    ///
    /// A text that is none of these has an empty host and @p defaultPort. @p defaultPort is not
    /// validated.
    LyraUrl(const QString& url = QString(), int defaultPort = defaultServerPort);

    /// The name or literal address of the host, without brackets; the path of a local file. Empty
    /// if the text held no host.
    const QString& host() const { return host_; }
    /// 0..65535, or the constructor's default port; 0 for a local file.
    int port() const { return port_; }

    /// Whether the port is 0, as only a local file should have.
    bool isLocalFile() const { return port_ == 0; }
    /// Whether the host is a literal IPv4 address, in any of the forms QHostAddress takes ("10.1"
    /// is 10.0.0.1).
    bool isIpv4() const;
    /// Whether the host is a literal IPv6 address, perhaps with a zone ("fe80::1%eth0").
    bool isIpv6() const;

    /// "host:port", for IPv6 "[host]:port" whatever the port is; the host alone for a local file;
    /// empty without a host.
    QString hostAndPort() const;

    /// Same host, letter by letter, and same port.
    friend bool operator==(const LyraUrl&, const LyraUrl&) = default;
    /// For hash containers; equal values have equal hashes.
    friend PYLON_EXPORT size_t qHash(const LyraUrl& url, size_t seed) noexcept;
    /// LyraUrl(host:port), the text of hostAndPort().
    friend PYLON_EXPORT QDebug operator<<(QDebug debug, const LyraUrl& url);

private:
    QString host_;
    int port_ = defaultServerPort;
};

}  // namespace pylon

Q_DECLARE_METATYPE(pylon::LyraUrl)
