#pragma once

#include <openssl/pem.h>
#include <pylon/security/opensslpointers.h>

#include <QtCore/QByteArray>

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;

/// What @p write, given a BIO, puts into it.
QByteArray written(auto write) {
    const std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new(BIO_s_mem()), BIO_free);
    write(bio.get());
    char* bytes = nullptr;
    const long size = BIO_get_mem_data(bio.get(), &bytes);
    return QByteArray(bytes, size);
}

/// A certificate that is valid from and to a number of days from now.
inline QByteArray certificate(const char* name, const Key& key, const char* issuer,
                              const Key& issuerKey, int from = -1, int to = 1) {
    const pylon::CryptoTools::X509Pointer x509(X509_new());
    const auto setName = [](X509_NAME* field, const char* text) {
        X509_NAME_add_entry_by_txt(field, "CN", MBSTRING_ASC, (const uchar*)text, -1, -1, 0);
    };
    setName(X509_get_subject_name(x509.get()), name);
    setName(X509_get_issuer_name(x509.get()), issuer);
    X509_gmtime_adj(X509_getm_notBefore(x509.get()), from * 86400L);
    X509_gmtime_adj(X509_getm_notAfter(x509.get()), to * 86400L);
    X509_set_pubkey(x509.get(), key.get());
    X509_sign(x509.get(), issuerKey.get(), EVP_sha256());
    return written([&](BIO* bio) { PEM_write_bio_X509(bio, x509.get()); });
}
