#include <pylon/security/cryptotools.h>
#include <pylon/security/internal/openssl.h>
#include <pylon/security/internal/operationlog.h>
#include <pylon/security/opensslpointers.h>

#include <openssl/pem.h>
#include <openssl/x509_vfy.h>

#include <cstdio>
#include <limits>

namespace pylon::CryptoTools {

using namespace internal;

namespace {

using StoreHandle = std::unique_ptr<X509_STORE, FreeBy<X509_STORE_free>>;
using StoreContextHandle = std::unique_ptr<X509_STORE_CTX, FreeBy<X509_STORE_CTX_free>>;

constexpr OperationLog parseLog("pylon::CryptoTools::x509_from_memory");
constexpr OperationLog publicKeyLog("pylon::CryptoTools::RSAPublicKeyFromX509i");
constexpr OperationLog loadLog("pylon::CryptoTools::loadX509Certificate");
constexpr OperationLog storeLog("pylon::CryptoTools::checkCertAgainstStore");
constexpr OperationLog checkLog("pylon::CryptoTools::checkX509Certificate");
constexpr OperationLog selfSignedLog("pylon::CryptoTools::x509CertificateIsSelfSigned");

int printOnStandardError(const char* text, std::size_t length, void*) {
    return std::fwrite(text, 1, length, stderr) == length ? 1 : 0;
}

/// @param length of @p pem, or -1 if it ends with a 0 byte.
X509Pointer x509_from_memory(const void* pem, int length = -1) {
    parseLog.entered();
    const BioHandle bio(BIO_new_mem_buf(pem, length));
    if (!bio) {
        parseLog(plog::Debug, "Error: BIO_new_mem_buf()");
        return nullptr;
    }
    X509Pointer certificate(PEM_read_bio_X509(bio.get(), nullptr, refusePassPhrase, nullptr));
    if (!certificate) {
        parseLog(plog::Debug, "PEM_read_bio_X509() - failed to load X509 cert from BIO");
        // Not ERR_print_errors_fp: on Windows libcrypto may have another C runtime than we.
        ERR_print_errors_cb(printOnStandardError, nullptr);
    }
    return certificate;
}

int checkCertAgainstStore(X509_STORE* store, X509* certificate, CryptoError* error) {
    storeLog.entered();
    int result = 0;
    const StoreContextHandle context(X509_STORE_CTX_new());
    // What OpenSSL checks by default, and nothing on top.
    X509_STORE_set_flags(store, 0);
    if (context && X509_STORE_CTX_init(context.get(), store, certificate, nullptr) == 1) {
        result = X509_verify_cert(context.get());
        if (result != 1) {
            const int code = X509_STORE_CTX_get_error(context.get());
            const char* const text = X509_verify_cert_error_string(code);
            storeLog(plog::Warn, "X509_verify_cert returned error: %d", code);
            storeLog(plog::Warn, "ErrCode: %s", text);
            if (error)
                error->setError(code, QString::fromUtf8(text));
        }
    }
    storeLog(plog::Debug, "Certificate %s", result >= 1 ? "OK" : "Check Failed");
    return result;
}

StoreHandle newStore() {
    StoreHandle store(X509_STORE_new());
    if (store)
        OPENSSL_init_crypto(OPENSSL_INIT_ADD_ALL_CIPHERS | OPENSSL_INIT_ADD_ALL_DIGESTS, nullptr);
    return store;
}

}  // namespace

RSA* RSAPublicKeyFromX509(const unsigned char* pem) {
    const ErrorQueueScope errors;
    const X509Pointer certificate = x509_from_memory(pem);
    return RSAPublicKeyFromX509i(certificate.get());
}

RSA* RSAPublicKeyFromX509i(X509* certificate) {
    const ErrorQueueScope errors;
    if (!certificate)
        return nullptr;
    const EvpKeyHandle evpKey(X509_get_pubkey(certificate));
    if (!evpKey) {
        publicKeyLog(plog::Debug, "X509_get_pubkey(x509cert) Failed");
        return nullptr;
    }
    RSA* const key = EVP_PKEY_get1_RSA(evpKey.get());
    if (!key)
        publicKeyLog(plog::Debug, "EVP_PKEY_get1_RSA(pub_key) Failed");
    return key;
}

X509* loadX509Certificate(unsigned char* data, unsigned int, Format format, CryptoError*) {
    const ErrorQueueScope errors;
    loadLog.entered();
    if (format == PEM)
        return x509_from_memory(data).release();
    loadLog(plog::Debug, "Warning X509 from DER not implemented");
    return nullptr;
}

X509* tryLoadX509Certificate(std::span<const unsigned char> pem) {
    const ErrorQueueScope errors;
    if (pem.size() > std::numeric_limits<int>::max())
        return nullptr;
    return x509_from_memory(pem.data(), static_cast<int>(pem.size())).release();
}

bool checkX509Certificate(const char* serverPem, const char* caPem, CryptoError* error) {
    const ErrorQueueScope errors;
    checkLog.entered();
    if (!serverPem || !caPem)
        return false;
    const X509Pointer authority = x509_from_memory(caPem);
    const X509Pointer server = x509_from_memory(serverPem);
    if (!authority)
        checkLog(plog::Warn, "Failed to load CA Certificate");
    if (!server)
        checkLog(plog::Warn, "Failed to load Server Certificate");
    if (!authority || !server)
        return false;
    const StoreHandle store = newStore();
    if (!store)
        return false;
    X509_STORE_add_cert(store.get(), authority.get());
    return checkCertAgainstStore(store.get(), server.get(), error) == 1;
}

bool checkX509Certificate(const char* serverPem, CryptoError* error) {
    const ErrorQueueScope errors;
    checkLog.entered();
    if (!serverPem)
        return false;
    const X509Pointer server = x509_from_memory(serverPem);
    if (!server) {
        checkLog(plog::Warn, "Failed to load Server Certificate");
        return false;
    }
    const StoreHandle store = newStore();
    if (!store)
        return false;
    // Any certificate, self-signed or not, becomes an anchor, and a check that could not be carried
    // out (-1) counts as passed: hosts depend on both.
    if (x509CertificateIsSelfSigned(serverPem).has_value())
        X509_STORE_add_cert(store.get(), server.get());
    return checkCertAgainstStore(store.get(), server.get(), error) != 0;
}

std::optional<bool> x509CertificateIsSelfSigned(const char* pem) {
    const ErrorQueueScope errors;
    selfSignedLog.entered();
    const X509Pointer certificate = pem ? x509_from_memory(pem) : nullptr;
    if (!certificate)
        return std::nullopt;
    return X509_NAME_cmp(X509_get_issuer_name(certificate.get()),
                         X509_get_subject_name(certificate.get())) == 0;
}

}  // namespace pylon::CryptoTools
