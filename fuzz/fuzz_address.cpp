// Addresses: each line of the input one, through every reader; and whether sort() has an order.

#include "fuzz.h"

#include <pylon/data/compareipaddresses.h>
#include <pylon/data/lyraurl.h>

using namespace pylon;

static void readUrl(const QString& text) {
    const LyraUrl url(text, 7);
    FUZZ_CHECK(!(url.isIpv4() && url.isIpv6()));
    FUZZ_CHECK(url.port() >= 0 && url.port() <= 0xFFFF);
    FUZZ_CHECK(url.hostAndPort().startsWith(url.isIpv6() ? '[' + url.host() : url.host()));
    FUZZ_CHECK(CompareIpAddresses::getHostAndPort(text, 7).first == url.host());
}

// What sort() says, which leaves equal ones as they were, and lessThan() as far as it has an order.
static bool isBefore(const QString& a, const QString& b) {
    QStringList list = {b, a};
    CompareIpAddresses::sort(list);
    const bool before = a != b && list.first() == a;
    const bool isName = CompareIpAddresses::ipAddressType(a) == CompareIpAddresses::OtherAddress;
    const bool less = CompareIpAddresses::lessThan(a, b);
    FUZZ_CHECK(isName ? less : !less || (before && !CompareIpAddresses::lessThan(b, a)));
    return before;
}

void fuzz(const QByteArray& input) {
    constexpr qsizetype mostTexts = 6;
    const QStringList texts = QString::fromUtf8(input).split('\n').mid(0, mostTexts);
    bool before[mostTexts][mostTexts] = {};
    for (qsizetype a = 0; a < texts.size(); ++a) {
        readUrl(texts[a]);
        for (qsizetype b = 0; b < texts.size(); ++b)
            before[a][b] = isBefore(texts[a], texts[b]);
    }
    // A strict weak order: no two are before each other, and a third is not beside both.
    for (qsizetype a = 0; a < texts.size(); ++a)
        for (qsizetype b = 0; b < texts.size(); ++b)
            for (qsizetype c = 0; c < texts.size(); ++c)
                FUZZ_CHECK(!before[a][b] || (!before[b][a] && (before[a][c] || before[c][b])));
}
