#include <pylon/pylon.h>
#include <QtTest/QTest>

using namespace pylon;

class TestCredentials : public QObject {
    Q_OBJECT

    static QByteArray hashOf(const char* salt, const char* password) {
        QByteArray out(37, '#');
        encodeSHA1pass(salt, password, reinterpret_cast<unsigned char*>(out.data()));
        return out;
    }

private slots:
    void encodesBase64() {
        for (QByteArray data = "\xFF"; data.size() < 300; data += char(data.size() * 37)) {
            QByteArray out(500, '#');
            // A sanitizer sees what is read behind it.
            const std::vector<unsigned char> exact(data.begin(), data.end());
            base64(exact.data(), int(exact.size()), out.data());
            QCOMPARE(out.left(out.indexOf('#') + 1), data.toBase64() + '#');
        }
        base64(nullptr, 3, nullptr);
    }

    // printf 'c2FsdHNh:PASSWORD' | openssl sha1 -binary | head -c 18 | base64
    void hashesPasswords() {
        const QByteArray p40(40, 'p'), p41 = p40 + 'p';
        const std::pair<const char*, const char*> rows[] = {
            {"secret", "uoGonHSodd901ieFRySO4Qzy"},   {"", "PUc/pCYmCnlr7nytuquAfHHP"},
            {nullptr, "PUc/pCYmCnlr7nytuquAfHHP"},    {"J\xC3\xB8rg", "opHgOIlfj1DDI4wHJPxjGvCI"},
            {p40.data(), "lddc9mrSmeB4iy0JQ2uF/swq"}, {p41.data(), "lddc9mrSmeB4iy0JQ2uF/swq"}};
        for (const auto& [text, hash] : rows) {
            const QString password = QString::fromUtf8(text), fresh = encodePassword(password);
            QCOMPARE(hashOf("c2FsdHNhNOT OF IT", text), "c2FsdHNh:"_qba + hash + "\0###"_qba);
            QCOMPARE(fresh + '\0' + "###", hashOf(fresh.left(8).toLatin1(), text));
            QVERIFY(fresh != encodePassword(password));
        }
    }

    // python3 -c 'import hashlib, base64; u, p, s, k = "guard", "secret", "c2FsdHNh", "key"
    // t = f"{u}:{s}:{k}"; d = hashlib.sha1(t.encode()[:len(t)]).digest()
    // print(base64.b64encode(bytes((ord(c) if ord(c) < 256 else 0) ^ d[i % 20]
    //                              for i, c in enumerate(p))).decode())'
    void encryptsPasswords() {
        const std::tuple<QString, QString, QString, const char*> rows[] = {
            {"guard", "secret", "key", "96PmSwaK"},
            {"guard", "", "key", ""},
            {"guard", QString(25, 'x'), "", "5wGcx+ufkCOXgmNFFyAg/YjNatDnAZzH6w=="},
            {u"J\u00F8rg"_qs, u"p\u00FF\u20ACss"_qs, u"cl\u00E9"_qs, "WSXQxrw="}};
        for (const auto& [user, password, key, cipher] : rows) {
            const QString stored = user + ":c2FsdHNh:" + cipher;
            QCOMPARE(encryptUsernameAndPasswordWithSalt(user, password, "c2FsdHNh", key), stored);
            QCOMPARE(passwordsAreEqual(stored, user, password), key == "" || password == "");
            const QString made = encryptUsernameAndPassword(user, password, key);
            const QString checked = checkEncryptUsernameAndPassword(user, password, key);
            QVERIFY(made != checked && checked.section(':', 1, 1).size() == 8);
            for (const QString& fresh : {made, checked})
                QVERIFY(credentialMatches(fresh, user, password, key == "" ? "Korvatine" : key));
            const QString less = stored.chopped(1), other = less + QChar(stored.back().cell() ^ 1);
            for (const QString& wrong : QStringList{other, stored + '=', less, "::", ":", ""})
                QVERIFY(!passwordsAreEqual(wrong, user, password) &&
                        !credentialMatches(wrong, user, password, key));
        }
        QCOMPARE(checkEncryptUsernameAndPassword("", "secret", "key"), "");
        QCOMPARE(checkEncryptUsernameAndPassword("u", ":s:c", "key"), "u:s:c");
    }

    void randomNumbers() {
        RandomGenerator::init(-42);
        QVERIFY(RandomGenerator::isInitalised() && RandomGenerator::seed() == -42);
        QRandomGenerator same(quint32(-42));
        for (int round = 0; round < 100; ++round) {
            // The first number is the size, and each byte the lowest of a number of its own.
            const QByteArray payload = RandomGenerator::randomPayload(1, 4);
            QCOMPARE(quint64(payload.size()), 1 + same.generate64() % 3);
            for (const char byte : payload)
                QCOMPARE(byte, char(same.generate64()));
        }
        for (const auto& [most, size] : {std::pair(5, 5), std::pair(4, 0), std::pair(6, 5)})
            QCOMPARE(RandomGenerator::randomPayload(5, most).size(), size);
        RandomGenerator::init();
        QVERIFY(RandomGenerator::seed() >= 0 && RandomGenerator::seed() < 24 * 60 * 60 * 1000);
    }

    void identifiers() {
        const QString seven = u"ABCDEF\u00E6"_qs, marked = u"\uFEFFABCDE"_qs;
        // A text, its number, and whether it is an identifier.
        const std::tuple<QString, quint64, bool> rows[] = {
            {"5208208757389214273", 0x4847464544434241, true},
            {seven, 0xA6C3464544434241, true},
            {" +4407873 ", 0x434241, true},
            {marked, 0x4544434241BFBBEF, false},
            {"9223372036854775808", 0x3032373333323239, false},
            {"-1", 0xBFEFBDBFEFBDBFEF, false},
            {"ABC", 0x434241, false},
            {"0", 0, false}};
        for (const auto& [text, uid, isValid] : rows) {
            QCOMPARE(serverUIDFromString(text), uid);
            QCOMPARE(tryServerUIDFromString(text), isValid ? std::optional(uid) : std::nullopt);
            QVERIFY(!isValid || serverUIDToString(uid) == correctServerUID(text));
        }
    }
};

QTEST_APPLESS_MAIN(TestCredentials)
#include "tst_credentials.moc"
