#include <pylon/security/cryptotools.h>
#include <pylon/security/internal/openssl.h>
#include <pylon/security/internal/operationlog.h>

#include <openssl/blowfish.h>

#include <QtCore/QtEndian>

namespace pylon::CryptoTools {

using namespace internal;

namespace {

constexpr OperationLog blowfishLog("pylon::CryptoTools::blowfishECB");
constexpr int usualKeyLength = 16;
constexpr unsigned int blockSize = BF_BLOCK;

/// Output feedback: each block of the stream is the one before it, enciphered; the block before the
/// first is the initialisation vector. Blocks are big-endian numbers.
class Keystream {
public:
    Keystream(const unsigned char* key, int keyLength, const unsigned char* iv)
        : block_{qFromBigEndian<quint32>(iv), qFromBigEndian<quint32>(iv + blockSize / 2)} {
        BF_set_key(&schedule_, keyLength, key);
    }
    ~Keystream() {
        OPENSSL_cleanse(&schedule_, sizeof schedule_);
        OPENSSL_cleanse(block_, sizeof block_);
    }
    Q_DISABLE_COPY_MOVE(Keystream)

    quint64 next() {
        BF_encrypt(block_, &schedule_);
        return quint64{block_[0]} << 32 | block_[1];
    }

private:
    BF_KEY schedule_;
    BF_LONG block_[2];
};

}  // namespace

bool blowfishECB(unsigned char* data, unsigned int length, const unsigned char* key,
                 unsigned char* iv) {
    return blowfishECB(data, length, key, usualKeyLength, iv);
}

bool blowfishECB(unsigned char* data, unsigned int length, const unsigned char* key, int keyLength,
                 unsigned char* iv) {
    const ErrorQueueScope errors;
    blowfishLog.entered();
    if (length == 0 || !data || !key || keyLength < 1 || !iv) {
        blowfishLog(plog::Debug, "invalid input params");
        return false;
    }
    Keystream stream(key, keyLength, iv);
    for (; length >= blockSize; length -= blockSize, data += blockSize)
        qToBigEndian(qFromBigEndian<quint64>(data) ^ stream.next(), data);
    if (length > 0) {
        unsigned char last[blockSize];
        qToBigEndian(stream.next(), last);
        for (unsigned int i = 0; i < length; ++i)
            data[i] ^= last[i];
    }
    return true;
}

}  // namespace pylon::CryptoTools
