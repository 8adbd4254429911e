#include <pylon/security/credentials.h>
#include <pylon/security/internal/openssl.h>
#include <pylon/security/internal/sha1.h>

#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

namespace pylon {

namespace {

using CryptoTools::internal::ErrorQueueScope;
using internal::Sha1Digest;

constexpr std::size_t saltSize = 8;
constexpr std::size_t longestPassword = 40;
// As many as make a Base64 text without padding.
constexpr std::size_t digestBytesShown = 18;

constexpr char builtInKey[] = "Korvatine";

using Salt = std::array<char, saltSize>;

Salt newSalt() {
    const ErrorQueueScope errors;
    std::array<unsigned char, 6> bytes{};
    RAND_bytes(bytes.data(), static_cast<int>(bytes.size()));
    Salt salt;
    base64(bytes.data(), static_cast<int>(bytes.size()), salt.data());
    return salt;
}

void wipe(QByteArray& text) {
    OPENSSL_cleanse(text.data(), static_cast<std::size_t>(text.size()));
}

/// SHA-1 of user ':' salt ':' key, cut to as many bytes of UTF-8 as there are UTF-16 code units:
/// stored credentials depend on it.
Sha1Digest digestOf(const QString& user, const QString& salt, const QString& key) {
    const qsizetype codeUnits = user.size() + 1 + salt.size() + 1 + key.size();
    QByteArray keyText = key.toUtf8();
    QByteArray text = user.toUtf8() + ':' + salt.toUtf8() + ':' + keyText;
    const Sha1Digest digest = internal::sha1(QByteArrayView(text).first(codeUnits));
    wipe(keyText);
    wipe(text);
    return digest;
}

QString encrypted(const QString& password, const Sha1Digest& digest) {
    QByteArray bytes(password.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < password.size(); ++i) {
        const char16_t unit = password[i].unicode();
        const unsigned char mask = digest[static_cast<std::size_t>(i) % digest.size()];
        bytes[i] = static_cast<char>((unit > 0xFF ? 0 : unit) ^ mask);
    }
    QByteArray text((bytes.size() + 2) / 3 * 4, '\0');
    base64(reinterpret_cast<const unsigned char*>(bytes.constData()),
           static_cast<int>(bytes.size()), text.data());
    return QString::fromLatin1(text);
}

/// The credential of this user and password with the salt of another one, which is between its
/// first two colons.
std::optional<QString> encryptedLike(const QString& stored, const QString& user,
                                     const QString& password, const QString& key) {
    const qsizetype first = stored.indexOf(u':');
    const qsizetype second = stored.indexOf(u':', first + 1);
    if (second < 0)
        return std::nullopt;
    const QString salt = stored.sliced(first + 1, second - first - 1);
    return encryptUsernameAndPasswordWithSalt(user, password, salt, key);
}

}  // namespace

void encodeSHA1pass(const char* salt, const char* password, unsigned char* out) {
    std::array<char, saltSize + 1 + longestPassword> text{};
    std::copy_n(salt, qstrnlen(salt, saltSize), text.begin());
    text[saltSize] = ':';
    const std::size_t length = qstrnlen(password, longestPassword);
    std::copy_n(password, length, text.begin() + saltSize + 1);

    const std::size_t used = saltSize + 1 + length;
    const Sha1Digest digest =
        internal::sha1(QByteArrayView(text.data(), static_cast<qsizetype>(used)));
    std::memcpy(out, text.data(), saltSize + 1);
    base64(digest.data(), int{digestBytesShown}, reinterpret_cast<char*>(out) + saltSize + 1);
    out[saltSize + 1 + digestBytesShown / 3 * 4] = '\0';
    OPENSSL_cleanse(text.data(), text.size());
}

void encodeSHA1pass(const char* password, unsigned char* out) {
    encodeSHA1pass(newSalt().data(), password, out);
}

QString encodePassword(const QString& password) {
    std::array<unsigned char, 36> hash{};
    QByteArray utf8 = password.toUtf8();
    encodeSHA1pass(utf8.constData(), hash.data());
    wipe(utf8);
    return QString::fromLatin1(reinterpret_cast<const char*>(hash.data()));
}

QString encryptUsernameAndPassword(const QString& user, const QString& password,
                                   const QString& key) {
    const Salt salt = newSalt();
    return encryptUsernameAndPasswordWithSalt(user, password,
                                              QString::fromLatin1(salt.data(), saltSize),
                                              key.isEmpty() ? QLatin1String(builtInKey) : key);
}

QString encryptUsernameAndPasswordWithSalt(const QString& user, const QString& password,
                                           const QString& salt, const QString& key) {
    return user + u':' + salt + u':' + encrypted(password, digestOf(user, salt, key));
}

QString checkEncryptUsernameAndPassword(const QString& user, const QString& password,
                                        const QString& key) {
    if (user.isEmpty())
        return {};
    if (password.contains(u':'))
        return user + password;
    return encryptUsernameAndPassword(user, password, key);
}

bool passwordsAreEqual(const QString& stored, const QString& user, const QString& password) {
    return encryptedLike(stored, user, password, QString()) == stored;
}

bool credentialMatches(const QString& stored, const QString& user, const QString& password,
                       const QString& key) {
    const auto expected = encryptedLike(stored, user, password, key);
    return expected && expected->size() == stored.size() &&
           CRYPTO_memcmp(expected->constData(), stored.constData(),
                         static_cast<std::size_t>(stored.size()) * sizeof(QChar)) == 0;
}

}  // namespace pylon
