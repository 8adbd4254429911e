#include <pylon/platform/osal.h>
#include <pylon/security/cryptotools.h>
#include <pylon/security/internal/openssl.h>
#include <pylon/security/internal/operationlog.h>
#include <pylon/security/opensslpointers.h>

#include <openssl/pem.h>

#include <QtCore/QFileInfo>

#include <cstdio>

namespace pylon::CryptoTools {

using namespace internal;

namespace {

using FileHandle = std::unique_ptr<std::FILE, FreeBy<std::fclose>>;

constexpr OperationLog loadLog("pylon::CryptoTools::loadRSAPrivateKey");
constexpr OperationLog decryptLog("pylon::CryptoTools::RSAPrivateDecrypt");

enum LoadError { CannotOpen = 0, BadKey = 2, ShortRead = 3 };

void setError(CryptoError* error, LoadError id, const QString& text) {
    if (error)
        error->setError(id, text);
}

FileHandle openKeyFile(const QString& path) {
    // Not every system refuses to open a folder, but none can read one.
    if (QFileInfo(path).isDir())
        return nullptr;
    std::FILE* file = nullptr;
    osal::fopen(&file, path, QStringLiteral("rb"));
    // No copy of the key in the stream's own buffer, which nobody wipes.
    if (file)
        std::setvbuf(file, nullptr, _IONBF, 0);
    return FileHandle(file);
}

/// @param path in UTF-8, which OpenSSL expects on every platform.
RsaPointer readPem(const QByteArray& path) {
    const BioHandle bio(BIO_new(BIO_s_file()));
    if (!bio || BIO_read_filename(bio.get(), path.constData()) <= 0)
        return nullptr;
    return RsaPointer(PEM_read_bio_RSAPrivateKey(bio.get(), nullptr, refusePassPhrase, nullptr));
}

long sizeOf(std::FILE* file) {
    if (std::fseek(file, 0, SEEK_END) != 0)
        return -1;
    const long size = std::ftell(file);
    std::rewind(file);
    return size;
}

RsaPointer readDer(std::FILE* file, bool& shortRead) {
    const long length = sizeOf(file);
    if (length < 1)
        return nullptr;
    const SecretBytes bytes(static_cast<std::size_t>(length));
    const std::size_t count = bytes.data() ? std::fread(bytes.data(), 1, bytes.size(), file) : 0;
    if (count != bytes.size()) {
        loadLog(plog::Warn,
                "Warning = private key size: %d but only read %llu. Ignoring load request.",
                static_cast<int>(length), static_cast<unsigned long long>(count));
        shortRead = true;
        return nullptr;
    }
    const unsigned char* position = bytes.data();
    return RsaPointer(d2i_RSAPrivateKey(nullptr, &position, length));
}

/// Whether OpenSSL can print the key. The text is wiped with the BIO.
bool isPrintable(const RSA* key) {
    const BioHandle bio(BIO_new(BIO_s_mem()));
    return bio && RSA_print(bio.get(), key, 0) == 1 && BIO_pending(bio.get()) > 0;
}

}  // namespace

RSA* loadRSAPrivateKey(const QString& path, Format format, CryptoError* error) {
    const ErrorQueueScope errors;
    const QByteArray utf8Path = path.toUtf8();
    loadLog(plog::Trace, "Loading private key from file: %s.", utf8Path.constData());

    const FileHandle file = openKeyFile(path);
    if (!file) {
        setError(error, CannotOpen, QStringLiteral("Unable to open file: ") + path);
        return nullptr;
    }

    RsaPointer key;
    bool shortRead = false;
    if (format == PEM)
        key = readPem(utf8Path);
    else if (format == DER)
        key = readDer(file.get(), shortRead);

    if (key) {
        if (plog::LG_debug_enabled && isPrintable(key.get()))
            loadLog(plog::Debug, "Loaded Private Key.");
        return key.release();
    }
    if (shortRead) {
        setError(error, ShortRead, QStringLiteral("Unable to read file: ") + path);
        return nullptr;
    }
    char reason[256];
    ERR_error_string_n(ERR_get_error(), reason, sizeof reason);
    loadLog(plog::Warn, "Error: Couldn't load file %s", utf8Path.constData());
    loadLog(plog::Warn, "RSA error message : %s", reason);
    setError(error, BadKey, QStringLiteral("Bad private key\nOpenSSL:") + QLatin1String(reason));
    return nullptr;
}

int RSAPrivateDecrypt(int length, const unsigned char* from, unsigned char* to, RSA* key,
                      int padding) {
    const ErrorQueueScope errors;
    decryptLog.entered();
    if (length < 1 || !from || !to || !key)
        return -1;
    return RSA_private_decrypt(length, from, to, key, padding);
}

}  // namespace pylon::CryptoTools
