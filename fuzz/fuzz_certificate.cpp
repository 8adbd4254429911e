// Certificates: the input as a PEM text, and as what a PEM text wraps.

#include "fuzz.h"

#include <openssl/err.h>
#include <pylon/security/opensslpointers.h>

using namespace pylon::CryptoTools;

// What the library prints there would bury the fuzzer's own report.
[[maybe_unused]] static const bool isQuiet = (stderr = std::fopen("/dev/null", "w")) != nullptr;

static void check(QByteArray pem) {
    auto* const text = reinterpret_cast<unsigned char*>(pem.data());
    const X509Pointer x509(tryLoadX509Certificate({text, qstrlen(pem)}));
    const RsaPointer key(RSAPublicKeyFromX509(text));
    CryptoError error;
    const bool isAccepted = checkX509Certificate(pem, pem, &error);
    FUZZ_CHECK(!isAccepted || (checkX509Certificate(pem, nullptr) && !error.hasError()));
    FUZZ_CHECK(x509CertificateIsSelfSigned(pem).has_value() == (x509 != nullptr));
    FUZZ_CHECK(x509 || (!key && !isAccepted));
    FUZZ_CHECK(ERR_peek_error() == 0);
}

void fuzz(const QByteArray& input) {
    check(input);
    QByteArray lines = input.toBase64();
    for (qsizetype at = 64; at < lines.size(); at += 65)
        lines.insert(at, '\n');
    check("-----BEGIN CERTIFICATE-----\n" + lines + "\n-----END CERTIFICATE-----\n");
}
