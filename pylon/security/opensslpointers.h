#pragma once

#include <pylon/export.h>
#include <pylon/security/cryptotools.h>

#include <memory>

/// @file
/// Owners for the handles that functions of cryptotools.h return. They free them with the libcrypto
/// that this library runs with, and need no header of OpenSSL:
///
///     const RsaPointer key(loadRSAPrivateKey(path, PEM, &error));

namespace pylon::CryptoTools {

/// Frees a key.
struct PYLON_EXPORT RsaFree {
    /// Frees @p key.
    void operator()(RSA* key) const noexcept;
};

/// Frees a certificate.
struct PYLON_EXPORT X509Free {
    /// Frees @p certificate.
    void operator()(X509* certificate) const noexcept;
};

/// Owns an RSA key.
using RsaPointer = std::unique_ptr<RSA, RsaFree>;
/// Owns a certificate.
using X509Pointer = std::unique_ptr<X509, X509Free>;

}  // namespace pylon::CryptoTools
