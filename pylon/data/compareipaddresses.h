#pragma once

#include <pylon/export.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <utility>

namespace pylon {

/// Tells kinds of server addresses apart and puts them into an order for people: IPv4 before IPv6,
/// by the numbers in them and not by their text, then by port.
///
/// Every address is first read by LyraUrl, so "http://10.0.0.2:81" and "[fe80::1]:81" will do; that
/// looks on the disk for a file of this name.
///
/// The class has no data. Thread-safety: all functions may be called at once.
class PYLON_EXPORT CompareIpAddresses {
public:
    /// What a text is, as LyraUrl reads it.
    enum IpAddressType : int {
        IPv4Address = 0,  ///< A literal IPv4 address, with or without a port.
        IPv6Address = 1,  ///< A literal IPv6 address, with or without brackets and port.
        OtherAddress = 2  ///< A host name, a local file, or nothing that is an address.
    };

    /// Host and port of @p address, see LyraUrl; the port in decimal. An empty host for a text that
    /// holds none.
    static std::pair<QString, QString> getHostAndPort(const QString& address, int defaultPort);

    /// The kind of @p address.
    static IpAddressType ipAddressType(const QString& address);

    /// Whether @p a stands before @p b.
    ///
    /// Groups that are spelt alike are equal; the first that is not decides by its number, and with
    /// all alike the port does, 80 where none is given. A group that is missing (IPv4 "10.1", a
    /// group in place of which an IPv4 tail stands) or no number (the last one of an address with a
    /// zone) counts as 0.
    ///
    /// Anything that is no literal address is less than everything, *also than its like*: for two
    /// host names this is true both ways round, and groups like "1" and "01" are neither less nor
    /// equal. So this is no order to sort by, unless all are addresses in their usual form; sort()
    /// is.
    static bool lessThan(QString a, QString b);

    /// Sorts by a strict weak order: what is no literal address first, by code units; then IPv4 and
    /// IPv6, by the numbers lessThan() goes by, so that where that says "less", this says so too
    /// (but for names). Equal ones keep their order. Reads each text once.
    static void sort(QStringList& addresses);
};

}  // namespace pylon
