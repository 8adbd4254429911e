#include <pylon/data/compareipaddresses.h>

#include <pylon/data/lyraurl.h>

#include <QtCore/QList>
#include <QtCore/QStringView>
#include <QtNetwork/QHostAddress>

#include <algorithm>
#include <array>
#include <cstddef>
#include <tuple>
#include <vector>

namespace pylon {

namespace {

// Where an address without a port stands among those that have one.
constexpr int portForComparison = 80;

constexpr qsizetype v4Groups = 4;
constexpr qsizetype v6Groups = 8;

CompareIpAddresses::IpAddressType typeOf(const LyraUrl& url) {
    switch (QHostAddress(url.host()).protocol()) {
        case QAbstractSocket::IPv4Protocol:
            return CompareIpAddresses::IPv4Address;
        case QAbstractSocket::IPv6Protocol:
            return CompareIpAddresses::IPv6Address;
        default:
            return CompareIpAddresses::OtherAddress;
    }
}

// Groups are views into the host.
using Groups = QList<QStringView>;

Groups splitIpV4(QStringView host) {
    return host.split(u'.');
}

// Writes out the groups that "::" stands for.
Groups splitIpV6(QStringView host) {
    constexpr QStringView abbreviation(u"::");
    if (host.count(abbreviation) != 1)
        return host.split(u':');
    const qsizetype at = host.indexOf(abbreviation);
    Groups groups = at == 0 ? Groups() : host.first(at).split(u':');
    const QStringView rest = host.sliced(at + abbreviation.size());
    const Groups tail = rest.isEmpty() ? Groups() : rest.split(u':');
    while (groups.size() + tail.size() < v6Groups)
        groups.append(u"0");
    return groups + tail;
}

Groups split(const QString& host, CompareIpAddresses::IpAddressType type) {
    const bool isV4 = type == CompareIpAddresses::IPv4Address;
    Groups groups = isV4 ? splitIpV4(host) : splitIpV6(host);
    groups.resize(isV4 ? v4Groups : v6Groups, u"0");
    return groups;
}

int toNumber(QStringView group, CompareIpAddresses::IpAddressType type) {
    return group.toInt(nullptr, type == CompareIpAddresses::IPv4Address ? 10 : 16);
}

// What sort() goes by, for the address of this index in the list.
struct SortKey {
    SortKey(const QStringList& addresses, qsizetype i) : index(i) {
        const LyraUrl url(addresses[i], portForComparison);
        const auto type = typeOf(url);
        if (type == CompareIpAddresses::OtherAddress)
            return;
        rank = 1 + type;
        auto number = numbers.begin();
        for (const QStringView group : split(url.host(), type))
            *number++ = toNumber(group, type);
        numbers.back() = url.port();
    }

    int rank = 0;                             // names, then the families
    std::array<int, v6Groups + 1> numbers{};  // of a literal address: groups, then the port
    qsizetype index;
};

}  // namespace

std::pair<QString, QString> CompareIpAddresses::getHostAndPort(const QString& address,
                                                               int defaultPort) {
    const LyraUrl url(address, defaultPort);
    return {url.host(), QString::number(url.port())};
}

CompareIpAddresses::IpAddressType CompareIpAddresses::ipAddressType(const QString& address) {
    return typeOf(LyraUrl(address));
}

bool CompareIpAddresses::lessThan(QString a, QString b) {
    const LyraUrl left(a, portForComparison);
    const IpAddressType type = typeOf(left);
    if (type == OtherAddress)
        return true;
    const LyraUrl right(b, portForComparison);
    const IpAddressType rightType = typeOf(right);
    if (rightType == OtherAddress)
        return false;
    if (type != rightType)
        return type == IPv4Address;

    const Groups leftGroups = split(left.host(), type);
    const Groups rightGroups = split(right.host(), type);
    const auto [i, j] = std::ranges::mismatch(leftGroups, rightGroups);
    // Ports keep their order also when their digits are read with the base of the groups.
    return i == leftGroups.end() ? left.port() < right.port()
                                 : toNumber(*i, type) < toNumber(*j, type);
}

void CompareIpAddresses::sort(QStringList& addresses) {
    std::vector<SortKey> keys;
    keys.reserve(static_cast<std::size_t>(addresses.size()));
    for (qsizetype i = 0; i < addresses.size(); ++i)
        keys.emplace_back(addresses, i);
    std::ranges::sort(keys, [&](const SortKey& a, const SortKey& b) {
        if (a.rank == 0 && b.rank == 0)
            return std::tie(addresses[a.index], a.index) < std::tie(addresses[b.index], b.index);
        return std::tie(a.rank, a.numbers, a.index) < std::tie(b.rank, b.numbers, b.index);
    });
    QStringList sorted;
    sorted.reserve(addresses.size());
    for (const SortKey& key : keys)
        sorted.append(addresses[key.index]);
    addresses.swap(sorted);
}

}  // namespace pylon
