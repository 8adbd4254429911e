#include <pylon/security/internal/sha1.h>

#include <openssl/crypto.h>
#include <openssl/sha.h>

namespace pylon::internal {

Sha1Digest sha1(QByteArrayView bytes) {
    Sha1Digest digest;
    SHA_CTX context;
    SHA1_Init(&context);
    SHA1_Update(&context, bytes.data(), static_cast<std::size_t>(bytes.size()));
    SHA1_Final(digest.data(), &context);
    OPENSSL_cleanse(&context, sizeof context);
    return digest;
}

}  // namespace pylon::internal
