// Addresses: each line of the input one, through every reader; and whether sort() has an order.

#include "fuzz.h"

#include <pylon/data/compareipaddresses.h>
#include <pylon/data/lyraurl.h>

using namespace pylon;

namespace {

constexpr qsizetype mostTexts = 6;

// What sort() says: it leaves equal ones as they were.
bool isBefore(const QString& a, const QString& b) {
    QStringList list = {b, a};
    CompareIpAddresses::sort(list);
    return a != b && list.first() == a;
}

void readUrl(const QString& text) {
    const LyraUrl url(text, 7);
    FUZZ_CHECK(!(url.isIpv4() && url.isIpv6()));
    FUZZ_CHECK(url.port() >= 0 && url.port() <= 0xFFFF);
    FUZZ_CHECK(url.hostAndPort().startsWith(url.isIpv6() ? '[' + url.host() : url.host()));
    FUZZ_CHECK(CompareIpAddresses::getHostAndPort(text, 7).first == url.host());
}

void comparePair(const QString& a, const QString& b, bool before) {
    const bool isName = CompareIpAddresses::ipAddressType(a) == CompareIpAddresses::OtherAddress;
    const bool less = CompareIpAddresses::lessThan(a, b);
    FUZZ_CHECK(isName ? less : !less || (before && !CompareIpAddresses::lessThan(b, a)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QStringList texts = QString::fromUtf8(bytesOf(data, size)).split('\n').mid(0, mostTexts);
    bool before[mostTexts][mostTexts] = {};
    for (qsizetype a = 0; a < texts.size(); ++a) {
        readUrl(texts[a]);
        for (qsizetype b = 0; b < texts.size(); ++b) {
            before[a][b] = isBefore(texts[a], texts[b]);
            comparePair(texts[a], texts[b], before[a][b]);
        }
    }
    // A strict weak order: no two before each other, and nobody stands beside two who do not.
    for (qsizetype a = 0; a < texts.size(); ++a) {
        for (qsizetype b = 0; b < texts.size(); ++b) {
            FUZZ_CHECK(!before[a][b] || !before[b][a]);
            for (qsizetype c = 0; c < texts.size(); ++c)
                FUZZ_CHECK(!before[a][c] || before[a][b] || before[b][c]);
        }
    }
    return 0;
}
