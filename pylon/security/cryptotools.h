#pragma once

#include <pylon/export.h>
#include <pylon/security/cryptoerror.h>

#include <QtCore/QString>

#include <optional>
#include <span>

// OpenSSL's own names for what its functions take, so that nobody who includes this file has to
// read OpenSSL's headers.
struct rsa_st;
struct x509_st;
/// An RSA key of OpenSSL.
using RSA = rsa_st;
/// An X.509 certificate of OpenSSL.
using X509 = x509_st;

/// @file
/// RSA private keys, X.509 certificates and a Blowfish keystream, by way of OpenSSL 3.
///
/// Handles that a function returns belong to the caller, who frees them with `RSA_free` or
/// `X509_free` of the libcrypto that comes with linking this library, or gives them to the owners
/// of opensslpointers.h.
///
/// Nothing asks for a pass phrase: what needs one does not parse. Nothing throws. Failures are told
/// by the result and, where a function takes one, by an error record that may be null. Every
/// function empties the calling thread's OpenSSL error queue when it begins and when it ends, so
/// nothing left there by others is taken for its own error, and nothing of its own stays behind.
///
/// Functions log to module Playback, sub-module "Encrypt" (8192), under their own qualified names;
/// keys, pass phrases and plain text never reach the log.
///
/// Thread-safety: no state; all functions may be called from any thread. A handle must not be used
/// by two threads at once unless OpenSSL says so.

namespace pylon::CryptoTools {

/// Encoding of a key or certificate.
enum Format : int {
    DER = 0,  ///< Binary, ITU-T X.690.
    PEM = 1,  ///< Base64 between lines that say what it is, RFC 7468.
};

/// @name RSA keys
/// @{

/// Reads an RSA private key from a file: PKCS#1 if @p format is DER; PKCS#1 or PKCS#8, without a
/// pass phrase, if it is PEM.
/// @param[out] error what went wrong:
///
///     0   "Unable to open file: " and the path; also for a folder. hasError() is true.
///     2   "Bad private key\nOpenSSL:" and OpenSSL's text: no RSA private key, or not this format
///     3   "Unable to read file: " and the path: it gave fewer bytes than its size (DER)
///
/// @return the key, owned by the caller, or null after a failure.
PYLON_EXPORT RSA* loadRSAPrivateKey(const QString& path, Format format, CryptoError* error);

/// Decrypts @p length bytes with the private key.
/// @param to receives the plain text: up to `RSA_size(key)` bytes.
/// @param padding how the text was padded, one of OpenSSL's `RSA_..._PADDING`. With
///     `RSA_PKCS1_PADDING`, from OpenSSL 3.2 on, text that is padded otherwise is no error but
///     gives random bytes.
/// @return the length of the plain text, or -1 on error; also if a pointer is null or @p length is
///     below 1.
PYLON_EXPORT int RSAPrivateDecrypt(int length, const unsigned char* from, unsigned char* to,
                                   RSA* key, int padding);

/// Public key of the first certificate in @p pem, which ends with a 0 byte; null has none.
/// @return the key, owned by the caller; null if there is no certificate or its key is not RSA.
PYLON_EXPORT RSA* RSAPublicKeyFromX509(const unsigned char* pem);

/// Public key of @p certificate, which may be null and stays the caller's.
/// @return the key, owned by the caller and independent of the certificate; null if it is not RSA.
PYLON_EXPORT RSA* RSAPublicKeyFromX509i(X509* certificate);
/// @}

/// @name Certificates
/// Certificates come as PEM texts that, but for one function, end with a 0 byte; the first one in
/// the text counts. A null text does not parse. What OpenSSL has against one that does not is
/// printed on standard error.
/// @{

/// Parses a certificate.
/// @param data the text.
/// @param length not used.
/// @param format PEM; nothing else is supported.
/// @param error not used.
/// @return the certificate, owned by the caller, or null.
PYLON_EXPORT X509* loadX509Certificate(unsigned char* data, unsigned int length, Format format,
                                       CryptoError* error);

/// loadX509Certificate() for a PEM text from outside, which ends with its last byte.
[[nodiscard]] PYLON_EXPORT X509* tryLoadX509Certificate(std::span<const unsigned char> pem);

/// Whether the server's certificate is valid now and was signed by the given certificate authority,
/// without others between them; the authority has to be a root, that is, to be signed by itself.
/// Host names are not looked at.
/// @param[out] error the code and text of OpenSSL's `X509_V_ERR_...` if the check fails; not
///     written when a certificate does not parse.
PYLON_EXPORT bool checkX509Certificate(const char* serverPem, const char* caPem,
                                       CryptoError* error);

/// Whether the server's certificate is valid now and vouches for itself, as self-signed ones do.
/// Also true when OpenSSL could not carry out the check at all, so this is no proof of identity:
/// use the form with a certificate authority wherever there is one.
/// @param[out] error as above.
PYLON_EXPORT bool checkX509Certificate(const char* serverPem, CryptoError* error);

/// Whether issuer and subject of the certificate have the same name; no signature is checked.
/// @return no value if @p pem does not parse.
PYLON_EXPORT std::optional<bool> x509CertificateIsSelfSigned(const char* pem);
/// @}

/// @name Blowfish
/// Despite the name not the block mode ECB but output feedback (OFB, 64 bits): the data is XORed
/// with a keystream that key and @p iv determine. Calling it again restores the data. The same key
/// and @p iv must never serve for two messages, and nothing tells whether data was changed on its
/// way: this is for data of existing servers, not for new formats.
/// @{

/// Enciphers or deciphers @p length bytes in place with a key of 16 bytes.
/// @param iv 8 bytes, not changed.
/// @return false, with nothing changed, if a pointer is null or @p length is 0.
PYLON_EXPORT bool blowfishECB(unsigned char* data, unsigned int length, const unsigned char* key,
                              unsigned char* iv);

/// As above with a key of @p keyLength bytes, of which the first 72 count.
/// @return false also if @p keyLength is below 1.
PYLON_EXPORT bool blowfishECB(unsigned char* data, unsigned int length, const unsigned char* key,
                              int keyLength, unsigned char* iv);
/// @}

}  // namespace pylon::CryptoTools
