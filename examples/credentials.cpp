// Stores a password and checks it, loads a private key and checks a server's certificate.
// Usage: example-credentials KEY CERTIFICATE AUTHORITY, all of them PEM files.

#include <pylon/security/credentials.h>
#include <pylon/security/cryptotools.h>
#include <pylon/security/lockedkey.h>
#include <pylon/security/opensslpointers.h>
#include <QtCore/QFile>

#include <iostream>

using namespace pylon;
using namespace pylon::CryptoTools;

static void passwords(const QString& salt) {
    const QString key = "key of these settings";
    const QString stored = encryptUsernameAndPasswordWithSalt("guard", "secret", salt, key);
    std::cout << qPrintable(stored) << std::boolalpha << ' '
              << credentialMatches(stored, "guard", "secret", key) << ' '
              << credentialMatches(stored, "guard", "Secret", key) << '\n';
}

static void stream() {
    const unsigned char secret[16] = {'k', 'e', 'y'};
    unsigned char start[8] = {1};
    unsigned char text[] = "picture";
    const LockedKey key(secret);  // never in the paging file, wiped at the end
    blowfishECB(text, sizeof text, key.key().data(), start);
    blowfishECB(text, sizeof text, key.key().data(), start);
    std::cout << text << '\n';
}

static QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

static void keysAndCertificates(const QString& keyFile, const QByteArray& server,
                                const QByteArray& authority) {
    CryptoError keyError;
    const RsaPointer key(loadRSAPrivateKey(keyFile, PEM, &keyError));
    if (key)
        std::cout << "key loaded\n";
    else
        std::cout << qPrintable(keyError.toString()) << '\n';

    CryptoError error;
    if (checkX509Certificate(server.constData(), authority.constData(), &error))
        std::cout << "certificate accepted\n";
    else if (error.hasError())
        std::cout << "certificate refused: " << qPrintable(error.toString()) << '\n';
    else
        std::cout << "not a certificate\n";
}

int main(int argc, char** argv) {
    passwords("c2FsdHNh");
    stream();
    if (argc == 4)
        keysAndCertificates(QFile::decodeName(argv[1]), contents(QFile::decodeName(argv[2])),
                            contents(QFile::decodeName(argv[3])));
}
