// Stored credentials: what comes in is compared with what a user could type.

#include "fuzz.h"

#include <pylon/security/credentials.h>

using namespace pylon;

void fuzz(const QByteArray& input) {
    const QString stored = QString::fromUtf8(input);
    const QString user = stored.section(u':', 0, 0), salt = stored.section(u':', 1, 1);
    // The rest as a password, so that the cipher text is as long as it might be.
    const QString password = stored.section(u':', 2);
    FUZZ_CHECK(passwordsAreEqual(stored, user, password) ==
               credentialMatches(stored, user, password));

    const QString made = encryptUsernameAndPasswordWithSalt(user, password, salt, QString());
    FUZZ_CHECK(passwordsAreEqual(made, user, password) && credentialMatches(made, user, password));
    FUZZ_CHECK(!credentialMatches(made + u'=', user, password));
}
