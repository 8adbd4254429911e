#include <pylon/security/credentials.h>
#include <pylon/security/randomgenerator.h>
#include <pylon/security/serveruid.h>
#include <QtTest/QTest>

#include <random>

using namespace pylon;

static QString hashOf(const char* salt, const char* password) {
    char out[37] = "####################################";
    encodeSHA1pass(salt, password, reinterpret_cast<unsigned char*>(out));
    return QString::fromLatin1(out, out[33] == '\0' ? 33 : 37);
}

class TestCredentials : public QObject {
    Q_OBJECT

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
        base64(reinterpret_cast<const unsigned char*>("x"), -1, nullptr);
    }

    // printf 'c2FsdHNh:PASSWORD' | openssl sha1 -binary | head -c 18 | base64
    void hashesPasswords() {
        const QByteArray p40(40, 'p'), p41 = p40 + 'p';
        const std::pair<const char*, const char*> rows[] = {
            {"secret", "uoGonHSodd901ieFRySO4Qzy"},   {"", "PUc/pCYmCnlr7nytuquAfHHP"},
            {nullptr, "PUc/pCYmCnlr7nytuquAfHHP"},    {"J\xC3\xB8rg", "opHgOIlfj1DDI4wHJPxjGvCI"},
            {p40.data(), "lddc9mrSmeB4iy0JQ2uF/swq"}, {p41.data(), "lddc9mrSmeB4iy0JQ2uF/swq"}};
        for (const auto& [password, hash] : rows) {
            QCOMPARE(hashOf("c2FsdHNhNOT OF IT", password), QString("c2FsdHNh:") + hash);
            const QString fresh = encodePassword(QString::fromUtf8(password));
            QCOMPARE(fresh, hashOf(fresh.left(8).toLatin1(), password));
            QVERIFY(fresh != encodePassword(QString::fromUtf8(password)));
        }
        QCOMPARE(hashOf("abc\0not salt", "x").left(9), u"abc\0\0\0\0\0:"_qs);
        QCOMPARE(hashOf(nullptr, "x").left(9), u"\0\0\0\0\0\0\0\0:"_qs);
    }

    // python3 -c 'import hashlib, base64; u, p, s, k = "guard", "secret", "c2FsdHNh", "key"
    // t = f"{u}:{s}:{k}"; d = hashlib.sha1(t.encode()[:len(t)]).digest()
    // print(base64.b64encode(bytes((ord(c) if ord(c) < 256 else 0) ^ d[i % 20]
    //                              for i, c in enumerate(p))).decode())'
    void encryptsPasswords() {
        const std::tuple<QString, QString, QString, const char*> rows[] = {
            {"guard", "secret", "key", "96PmSwaK"},
            {"guard", "secret", "", "7ByHzfaT"},
            {"guard", "", "key", ""},
            {"u", "ab", "k", "6nw="},
            {"guard", QString(25, 'x'), "", "5wGcx+ufkCOXgmNFFyAg/YjNatDnAZzH6w=="},
            {u"J\u00F8rg"_qs, u"p\u00E6\u20ACss"_qs, u"cl\u00E9"_qs, "WTzQxrw="}};
        for (const auto& [user, password, key, cipher] : rows) {
            const QString stored = user + ":c2FsdHNh:" + cipher;
            QCOMPARE(encryptUsernameAndPasswordWithSalt(user, password, "c2FsdHNh", key), stored);
            const bool needsNoKey = key.isEmpty() || password.isEmpty();
            QCOMPARE(passwordsAreEqual(stored, user, password), needsNoKey);
            QCOMPARE(credentialMatches(stored, user, password), needsNoKey);
            QVERIFY(credentialMatches(stored, user, password, key));
            QString other = stored;
            other.back() = QChar(other.back().unicode() ^ 1);
            for (const QString& wrong : {other, stored + '=', stored.chopped(1), QString("::")})
                QVERIFY(!passwordsAreEqual(wrong, user, password) &&
                        !credentialMatches(wrong, user, password, key));
        }
        for (const QString half : {"", ":"})
            QVERIFY(!passwordsAreEqual(half, "", "") && !credentialMatches(half, "", ""));
    }

    void drawsSalts() {
        for (const QString key : {"", "key"}) {
            const QString made = encryptUsernameAndPassword("u", "secret", key);
            const QString checked = checkEncryptUsernameAndPassword("u", "secret", key);
            for (const QString& stored : {made, checked}) {
                QCOMPARE(stored.section(':', 1, 1).size(), 8);
                QVERIFY(credentialMatches(stored, "u", "secret", key == "" ? "Korvatine" : key));
                QVERIFY(!passwordsAreEqual(stored, "u", "secret"));
            }
            QVERIFY(made != checked);
        }
        QCOMPARE(checkEncryptUsernameAndPassword("", "secret", "key"), "");
        QCOMPARE(checkEncryptUsernameAndPassword("u", ":s:c", "key"), "u:s:c");
    }

    void randomNumbers() {
        QVERIFY(!RandomGenerator::isInitalised() && RandomGenerator::seed() == 0);
        for (const int seed : {42, -1}) {
            RandomGenerator::init(seed);
            QVERIFY(RandomGenerator::isInitalised() && RandomGenerator::seed() == seed);
            std::seed_seq sequence{quint32(seed)};
            std::mt19937 twister(sequence);
            for (int i = 0; i < 1000; ++i) {
                const quint64 low = twister();
                QCOMPARE(RandomGenerator::randomNumber(), quint64{twister()} << 32 | low);
            }
        }
        RandomGenerator::init();
        QVERIFY(RandomGenerator::seed() >= 0 && RandomGenerator::seed() < 24 * 60 * 60 * 1000);
    }

    void randomPayloads() {
        // Least and greatest size asked for and given.
        const std::array<int, 4> rows[] = {{5, 5, 5, 5},      {1, 3, 1, 2},
                                           {0, 0, 0, 0},      {-5, 3, 0, 2},
                                           {-3, -3, 0, 0},    {INT_MAX, INT_MIN, 0, 0},
                                           {INT_MIN, 0, 0, 0}};
        for (const auto& [minSize, maxSize, least, most] : rows) {
            QMap<qsizetype, int> sizes;
            for (int i = 0; i < 200; ++i)
                ++sizes[RandomGenerator::randomPayload(minSize, maxSize).size()];
            QVERIFY(sizes.firstKey() == least && sizes.lastKey() == most);
        }
        // The first number is the size, and each byte the lowest of a number of its own.
        RandomGenerator::init(7);
        const QByteArray payload = RandomGenerator::randomPayload(10, 20);
        RandomGenerator::init(7);
        QCOMPARE(quint64(payload.size()), 10 + RandomGenerator::randomNumber() % 10);
        for (const char byte : payload)
            QCOMPARE(byte, char(RandomGenerator::randomNumber()));
    }

    void identifiers() {
        const QString padded = u"ABC\0\0\0\0\0"_qs, bad(8, QChar::ReplacementCharacter);
        const QString seven = u"ABCDEF\u00E6"_qs, eight = u"ABCDEFG\u00E6"_qs,
                      marked = u"\uFEFFABCDE"_qs;
        // A text, its 8-character form, its number, and whether it is an identifier.
        const std::tuple<QString, QString, quint64, bool> rows[] = {
            {"5208208757389214273", "ABCDEFGH", 0x4847464544434241, true},
            {" +4407873 ", padded, 0x434241, true},
            {"0", "", 0, false},
            {"-1", bad, 0xBFEFBDBFEFBDBFEF, false},
            {"9223372036854775808", "9223372036854775808", 0x3032373333323239, false},
            {"ABCDEFGH", "ABCDEFGH", 0x4847464544434241, true},
            {padded, padded, 0x434241, true},
            {seven, seven, 0xA6C3464544434241, true},
            {eight, eight, 0xC347464544434241, false},
            {marked, marked, 0x4544434241BFBBEF, false},
            {"", "", 0, false},
            {"ABC", "ABC", 0x434241, false},
        };
        for (const auto& [text, corrected, uid, isValid] : rows) {
            QCOMPARE(correctServerUID(text), corrected);
            QCOMPARE(serverUIDFromString(text), uid);
            QCOMPARE(tryServerUIDFromString(text), isValid ? std::optional(uid) : std::nullopt);
            QVERIFY(!isValid || serverUIDToString(uid) == corrected);
        }
        QVERIFY(!tryServerUIDFromString("ABCDEFG" + QString(QChar(0xD800))));
    }
};

QTEST_APPLESS_MAIN(TestCredentials)
#include "tst_credentials.moc"
