// Stored credentials: what comes in is compared with what a user could type.

#include "fuzz.h"

#include <pylon/security/credentials.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString stored = QString::fromUtf8(bytesOf(data, size));
    const QString user = stored.section(u':', 0, 0);
    const QString salt = stored.section(u':', 1, 1);
    // The rest as a password, so that the cipher text is as long as it might be.
    const QString password = stored.section(u':', 2);
    FUZZ_CHECK(pylon::passwordsAreEqual(stored, user, password) ==
               pylon::credentialMatches(stored, user, password));

    const QString made = pylon::encryptUsernameAndPasswordWithSalt(user, password, salt, QString());
    FUZZ_CHECK(pylon::passwordsAreEqual(made, user, password));
    FUZZ_CHECK(pylon::credentialMatches(made, user, password));
    FUZZ_CHECK(!pylon::credentialMatches(made + u'=', user, password));
    return 0;
}
