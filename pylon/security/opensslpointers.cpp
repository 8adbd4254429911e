#include <pylon/security/opensslpointers.h>

#include <openssl/rsa.h>
#include <openssl/x509.h>

namespace pylon::CryptoTools {

void RsaFree::operator()(RSA* key) const noexcept {
    RSA_free(key);
}

void X509Free::operator()(X509* certificate) const noexcept {
    X509_free(certificate);
}

}  // namespace pylon::CryptoTools
