#pragma once

#include <pylon/export.h>

#include <QtCore/QString>

/// @file
/// User names and passwords in the forms that servers and settings of this system keep them.
///
///     password hash   salt ':' Base64(the first 18 bytes of SHA-1(salt ':' password))
///     credential      user ':' salt ':' Base64(password XOR SHA-1(user ':' salt ':' key))
///
/// A salt is 6 random bytes as 8 characters of Base64. A credential can be turned back into the
/// password by whoever has the key, and both forms rest on a single round of SHA-1: they are for
/// existing servers and settings, not a protection for new ones.
///
/// Thread-safety: no state; all functions may be called from any thread.

namespace pylon {

/// Writes the Base64 form (RFC 4648, with '=' padding, no line breaks) of @p length bytes: 4
/// characters for every 3 bytes begun, and no 0 byte behind them. Nothing if @p data is null or
/// @p length is below 1.
PYLON_EXPORT void base64(const unsigned char* data, int length, char* out);

/// @name Password hashes
/// @{

/// Hash of a password with a given salt.
/// @param salt 8 characters, which need no 0 byte behind them; of a text that ends earlier, or is
///     null, the missing ones are 0.
/// @param password text that ends with a 0 byte, of which the first 40 bytes count; null is empty.
/// @param out room for 36 bytes. The hash takes 34 of them: 8 of salt, ':', 24 of Base64 and a 0
///     byte.
PYLON_EXPORT void encodeSHA1pass(const char* salt, const char* password, unsigned char* out);

/// As above with a new salt.
PYLON_EXPORT void encodeSHA1pass(const char* password, unsigned char* out);

/// Hash of a password, of which the first 40 bytes of UTF-8 count, with a new salt: 33 characters.
PYLON_EXPORT QString encodePassword(const QString& password);
/// @}

/// @name Credentials
/// Each UTF-16 code unit of a password is one byte of cipher text; units above U+00FF count as 0.
/// Of the UTF-8 form of user, salt and key, only as many bytes are hashed as the three have UTF-16
/// code units with their colons; what lies behind, if anything in them is not ASCII, does not
/// count.
/// @{

/// Credential with a new salt. An empty @p key means the built-in one, which is no secret.
PYLON_EXPORT QString encryptUsernameAndPassword(const QString& user, const QString& password,
                                                const QString& key);

/// Credential with a given salt; an empty @p key is taken as it is.
PYLON_EXPORT QString encryptUsernameAndPasswordWithSalt(const QString& user,
                                                        const QString& password,
                                                        const QString& salt, const QString& key);

/// Credential of a password that may be encrypted already, that is, be the rest of a credential
/// behind the user name: one that contains ':' is appended to @p user as it is, any other goes
/// through encryptUsernameAndPassword(). Empty if @p user is.
PYLON_EXPORT QString checkEncryptUsernameAndPassword(const QString& user, const QString& password,
                                                     const QString& key);

/// Whether @p stored is the credential of this user and password with an *empty* key. The built-in
/// key does not stand in for it, so what encryptUsernameAndPassword() makes never compares equal.
/// The time it takes tells where a wrong text differs; prefer credentialMatches().
PYLON_EXPORT bool passwordsAreEqual(const QString& stored, const QString& user,
                                    const QString& password);

/// Whether @p stored is the credential of this user and password with this key, an empty one taken
/// as it is. Answers as passwordsAreEqual() does for an empty key, but takes no longer or shorter
/// the more two credentials of the same length have in common.
[[nodiscard]] PYLON_EXPORT bool credentialMatches(const QString& stored, const QString& user,
                                                  const QString& password,
                                                  const QString& key = QString());
/// @}

}  // namespace pylon
