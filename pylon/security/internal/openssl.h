#pragma once

#include <openssl/bio.h>
#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include <QtCore/QtGlobal>

#include <cstddef>
#include <memory>

/// @file
/// Ownership of what OpenSSL hands out, and rules that hold for every use of it.

namespace pylon::CryptoTools::internal {

/// Confines the calling thread's error queue to one operation: empty when it begins, so that an
/// error found there is its own, and empty when it ends, on whatever path.
class ErrorQueueScope {
public:
    ErrorQueueScope() { ERR_clear_error(); }
    ~ErrorQueueScope() { ERR_clear_error(); }
    Q_DISABLE_COPY_MOVE(ErrorQueueScope)
};

/// A deleter that calls a free function.
template <auto Free>
struct FreeBy {
    template <class T>
    void operator()(T* handle) const {
        Free(handle);
    }
};

using BioHandle = std::unique_ptr<BIO, FreeBy<BIO_free>>;
using EvpKeyHandle = std::unique_ptr<EVP_PKEY, FreeBy<EVP_PKEY_free>>;

/// Bytes that are wiped before their memory is given back; null when there was no memory.
class SecretBytes {
public:
    explicit SecretBytes(std::size_t size)
        : bytes_(static_cast<unsigned char*>(OPENSSL_malloc(size))), size_(size) {}
    ~SecretBytes() { OPENSSL_clear_free(bytes_, size_); }
    Q_DISABLE_COPY_MOVE(SecretBytes)

    unsigned char* data() const { return bytes_; }
    std::size_t size() const { return size_; }

private:
    unsigned char* const bytes_;
    const std::size_t size_;
};

/// Answers OpenSSL's question for a pass phrase; without it OpenSSL would ask on the terminal.
inline int refusePassPhrase(char*, int, int, void*) {
    return -1;
}

}  // namespace pylon::CryptoTools::internal
