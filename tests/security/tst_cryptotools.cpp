#include "../log/recorder.h"
#include "pki.h"

#include <pylon/log/logmanager.h>
#include <pylon/security/opensslpointers.h>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <openssl/err.h>
#include <openssl/ui.h>

using namespace pylon::CryptoTools;
using namespace pylon::plog;

namespace {

// Every line there is, by level and origin. % stands for the path, OpenSSL's text or its code.
const QMap<QString, char> letters = {
    {"1 loadRSAPrivateKey Loading private key from file: %.", 'k'},
    {"2 loadRSAPrivateKey Loaded Private Key.", 'K'},
    {"8 loadRSAPrivateKey Error: Couldn't load file %", 'C'},
    {"8 loadRSAPrivateKey RSA error message : %", 'M'},
    {"8 loadRSAPrivateKey Warning = private key size: 4096 but only read 2. Ignoring load request.",
     'R'},
    {"1 RSAPrivateDecrypt ", 'd'},
    {"1 x509_from_memory ", 'p'},
    {"2 x509_from_memory Error: BIO_new_mem_buf()", 'N'},
    {"2 x509_from_memory PEM_read_bio_X509() - failed to load X509 cert from BIO", 'P'},
    {"1 loadX509Certificate ", 'l'},
    {"2 loadX509Certificate Warning X509 from DER not implemented", 'L'},
    {"2 RSAPublicKeyFromX509i X509_get_pubkey(x509cert) Failed", 'i'},
    {"2 RSAPublicKeyFromX509i EVP_PKEY_get1_RSA(pub_key) Failed", 'I'},
    {"1 x509CertificateIsSelfSigned ", 's'},
    {"1 checkX509Certificate ", 'c'},
    {"8 checkX509Certificate Failed to load CA Certificate", 'A'},
    {"8 checkX509Certificate Failed to load Server Certificate", 'S'},
    {"1 checkCertAgainstStore ", 'v'},
    {"8 checkCertAgainstStore X509_verify_cert returned error: %", 'V'},
    {"8 checkCertAgainstStore ErrCode: %", 'W'},
    {"2 checkCertAgainstStore Certificate OK", 'Y'},
    {"2 checkCertAgainstStore Certificate Check Failed", 'Z'},
    {"1 blowfishECB ", 'b'},
    {"2 blowfishECB invalid input params", 'B'}};

const QByteArray garbage(1024 * 1024, 'g');

// A null array stands for a null pointer.
unsigned char* bytesOf(const QByteArray& array) {
    char* const text = array.isNull() ? nullptr : const_cast<char*>(array.constData());
    return reinterpret_cast<unsigned char*>(text);
}

}  // namespace

class TestCryptoTools : public QObject {
    Q_OBJECT

    const QSharedPointer<Recorder> device = QSharedPointer<Recorder>::create();
    const Key rsa{EVP_RSA_gen(2048), EVP_PKEY_free}, longRsa{EVP_RSA_gen(4096), EVP_PKEY_free};
    const Key ec{EVP_EC_gen("P-256"), EVP_PKEY_free};
    const QTemporaryDir folder;
    QString path;
    CryptoError error;
    bool plainNames = false;

    static QByteArray pemOf(const Key& key, const EVP_CIPHER* cipher = nullptr,
                            decltype(&PEM_write_bio_PrivateKey) write = PEM_write_bio_PrivateKey) {
        const auto* const pass = reinterpret_cast<const uchar*>("pass");
        return written([&](BIO* bio) { write(bio, key.get(), cipher, pass, 4, nullptr, nullptr); });
    }

    void writeFile(const QByteArray& bytes) {
        path = folder.filePath(QStringLiteral("key \u9375 \u00FC"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    /// Carries out an operation for a host that has left an error.
    /// @return its result, a letter for each line it logs, and the code of the error it reports.
    QByteArray run(auto operation) {
        ERR_raise(ERR_LIB_USER, 77);
        device->items.clear();
        error = CryptoError();
        QByteArray text = QByteArray::number(int(operation())) + ' ';
        LogItem::usePrettyFunction(plainNames = !plainNames);
        for (const LogItem& item : std::as_const(device->items)) {
            QString line = item.function() + (' ' + item.rawMessage());
            const bool isOurs = line.startsWith("pylon::CryptoTools::") &&
                                item.module() == Playback && item.submods() == 8192;
            line = QString::number(item.logLevel()) + ' ' + line.mid(20);
            line.replace("error: " + QString::number(error.errorId()), "error: %");
            for (const QString& part : {path, error.toString().section("OpenSSL:", -1)})
                line.replace(part.isEmpty() ? "%" : part, "%");
            text += isOurs ? letters.value(line, '?') : '!';
        }
        text += ERR_get_error() == 0 ? "" : " left an error";
        return error.hasError() ? text + ' ' + QByteArray::number(error.errorId()) : text;
    }

    void expectKey(int format, const QByteArray& expected, const QString& message) {
        const auto load = [&](auto to) { return loadRSAPrivateKey(path, Format(format), to); };
        QCOMPARE(run([&] { return !!RsaPointer(load(&error)); }), expected);
        QVERIFY(error.toString().contains(message) && !error.toString().contains("(77)"));
        QCOMPARE(!RsaPointer(load(nullptr)), error.hasError());
    }

private slots:
    void initTestCase() {
        LogManager::instance()->setLogLevel(maxLogLevel());
        LogManager::instance()->addRawDevice(device);
        UI_METHOD* const terminal = UI_create_method("terminal");
        UI_method_set_reader(terminal, [](UI*, UI_STRING*) -> int { qFatal("asked"); });
        UI_set_default_method(terminal);
    }

    void loadsKeys() {
        const EVP_CIPHER* const aes = EVP_aes_128_cbc();
        constexpr auto pkcs1 = PEM_write_bio_PrivateKey_traditional;
        const auto pem = pemOf(rsa),
                   der = written([&](BIO*to) { i2d_PrivateKey_bio(to, rsa.get()); });
        const auto ecDer = written([&](BIO* to) { i2d_PrivateKey_bio(to, ec.get()); });
        const auto expect = [&](int format, bool loads, const QByteArrayList& files) {
            for (const QByteArray& bytes : files) {
                writeFile(bytes);
                expectKey(format, loads ? "1 kK" : "0 kCM 2",
                          loads ? "" : "Bad private key\nOpenSSL:error:");
                QVERIFY(QFile::remove(path));  // which Windows refuses while it is open
            }
        };
        expect(PEM, true, {pem, pemOf(longRsa, nullptr, pkcs1)});
        expect(DER, true, {der});
        expect(PEM, false, {pem.chopped(60), pemOf(rsa, aes), pemOf(rsa, aes, pkcs1), pemOf(ec)});
        expect(PEM, false, {der, "", garbage});
        expect(DER, false, {der.chopped(1), ecDer, pem, "", garbage});
        expect(2, false, {pem, der});
        for (const Format format : {DER, PEM})
            for (const QString& name : {folder.path(), folder.filePath("none")})
                path = name, expectKey(format, "0 k 0", "Unable to open file: " + path);
        // A file of the kernel: two bytes, and says it has a page of them.
        path = "/sys/kernel/profiling";
        if (QFile(path).size() == 4096)
            expectKey(DER, "0 kR 3", "Unable to read file: " + path);
        const CryptoError moved = std::move(error);
        QVERIFY(moved.toString() == error.toString() && moved.errorId() == error.errorId());
        error.reset();
        QVERIFY(error.hasError() && error.errorId() == 0 && error.toString().isEmpty());
        QVERIFY(CryptoError(0).hasError() && CryptoError(-7).errorId() == -7);
    }

    void logsLevels() {
        writeFile(pemOf(rsa));
        LogManager::instance()->setLogLevel(Error);
        expectKey(PEM, "1 ", "");
        expectKey(DER, "0 CM 2", "");
        QCOMPARE(run([] { return checkX509Certificate("", "", nullptr); }), "0 AS");
        LogManager::instance()->setLogLevel(maxLogLevel());
    }

    void decrypts() {
        writeFile(pemOf(rsa));
        const RsaPointer key(loadRSAPrivateKey(path, PEM, nullptr));
        const RsaPointer open(RSAPublicKeyFromX509(bytesOf(certificate("a", rsa, "a", rsa))));
        unsigned char code[256], out[256];
        RSA_public_encrypt(5, bytesOf("plain"), code, open.get(), RSA_PKCS1_OAEP_PADDING);
        RSA* const full = key.get();
        const auto expect = [&](int result, int size, auto from, auto to, RSA* with, int padding) {
            const auto decrypt = [&] { return RSAPrivateDecrypt(size, from, to, with, padding); };
            QCOMPARE(run(decrypt), QByteArray::number(result) + " d");
        };
        expect(-1, 0, code, out, full, RSA_NO_PADDING);
        expect(-1, 256, nullptr, out, full, RSA_NO_PADDING);
        expect(-1, 256, code, nullptr, full, RSA_NO_PADDING);
        expect(-1, 256, code, out, nullptr, RSA_NO_PADDING);
        expect(-1, 256, code, out, open.get(), RSA_PKCS1_OAEP_PADDING);
        expect(256, 256, code, out, full, RSA_NO_PADDING);
        expect(5, 256, code, out, full, RSA_PKCS1_OAEP_PADDING);
        QCOMPARE(QByteArrayView(out, 5), "plain");
    }

    void certificates() {
        const QByteArray root = certificate("root", rsa, "root", rsa);
        const QByteArray oldRoot = certificate("root", rsa, "root", rsa, -3, -2);
        const QByteArray impostor = certificate("root", longRsa, "root", longRsa);
        const QByteArray other = certificate("other", ec, "other", ec);
        const QByteArray middle = certificate("middle", ec, "root", rsa);
        const QByteArray end = certificate("end", rsa, "middle", ec);
        // Server, authority, what comes of the check against this, of the one against itself, and
        // of the question whether it is self-signed.
        using Row = std::array<QByteArray, 5>;
        QList<Row> rows = {
            {root, root, "1 cppvY", "1 cpspvY", "1 sp"},
            {other, root, "0 cppvVWZ 18", "1 cpspvY", "1 sp"},
            {oldRoot, oldRoot, "0 cppvVWZ 10", "0 cpspvVWZ 10", "1 sp"},
            {middle, root, "1 cppvY", "0 cpspvVWZ 20", "0 sp"},
            {middle, impostor, "0 cppvVWZ 7", "0 cpspvVWZ 20", "0 sp"},
            {end, middle, "0 cppvVWZ 2", "0 cpspvVWZ 20", "0 sp"},
            {"first\n" + root + "last" + middle, root, "1 cppvY", "1 cpspvY", "1 sp"},
            {QByteArray(), root, "0 c", "0 c", "2 s"}};
        const QByteArray locked = "Proc-Type: 4,ENCRYPTED\nDEK-Info: DES-CBC,0011223344556677\n\n";
        for (const QByteArray& bad : {QByteArray(""), garbage, root.chopped(30), pemOf(rsa),
                                      root.first(28) + locked + root.sliced(28)})
            rows << Row{root, bad, "0 cpPpA", "1 cpspvY", "1 sp"}
                 << Row{bad, root, "0 cppPS", "0 cpPS", "2 spP"}
                 << Row{bad, bad, "0 cpPpPAS", "0 cpPS", "2 spP"};

        for (const auto& [server, authority, both, alone, selfSigned] : std::as_const(rows)) {
            const auto* const pem = reinterpret_cast<const char*>(bytesOf(server));
            const char* const ca = authority;
            QCOMPARE(run([&] { return checkX509Certificate(pem, ca, &error); }), both);
            QCOMPARE(run([&] { return checkX509Certificate(pem, &error); }), alone);
            const auto ask = [&] { return std::optional<int>(x509CertificateIsSelfSigned(pem)); };
            QCOMPARE(run([&] { return ask().value_or(2); }), selfSigned);
            const QByteArray parsed = pem ? selfSigned.mid(3) : "pN";
            const QByteArray success = parsed == "p" ? "1 " : "0 ";
            auto* const text = bytesOf(server);
            const auto load = [&](Format as) {
                return run([&] { return !!X509Pointer(loadX509Certificate(text, 0, as, {})); });
            };
            QCOMPARE(load(PEM), success + 'l' + parsed);
            QCOMPARE(load(DER), "0 lL");
            const bool isEc = server == other || server == middle;
            QCOMPARE(run([&] { return !!RsaPointer(RSAPublicKeyFromX509(text)); }),
                     isEc ? "0 pI" : success + parsed);
        }
        QVERIFY(!checkX509Certificate(end, root, nullptr));
        QCOMPARE(run([&] { return checkX509Certificate(root, nullptr, &error); }), "0 c");
        const std::span whole(bytesOf(root), std::size_t(root.size()));
        const auto tryLoad = [&](auto pem) {
            return run([&] { return !!X509Pointer(tryLoadX509Certificate(pem)); });
        };
        QCOMPARE(tryLoad(whole), "1 p");
        QCOMPARE(tryLoad(whole.first(whole.size() - 30)), "0 pP");
        QCOMPARE(tryLoad(std::span<unsigned char>()), "0 pN");
        const X509Pointer empty(X509_new());
        QCOMPARE(run([&] { return !RSAPublicKeyFromX509i(empty.get()); }), "1 i");
    }

    void blowfish() {
        // head -c 40 /dev/zero | openssl enc -bf-ofb -provider legacy -provider default
        //     -K 000102030405060708090a0b0c0d0e0f -iv f0f1f2f3f4f5f6f7 | xxd -p
        const auto key = QByteArray::fromHex("000102030405060708090a0b0c0d0e0f");
        const auto iv = QByteArray::fromHex("f0f1f2f3f4f5f6f7"), null = QByteArray();
        const auto stream = QByteArray::fromHex(
            "beca2c66ff40982e84a1cda721784759dffc231621bf428bdf367bf34b4963f8d48490c49d605359");
        auto* const start = bytesOf(iv);
        const auto apply = [&](auto& to, unsigned size, auto& with, auto... length) {
            return run(
                [&] { return blowfishECB(bytesOf(to), size, bytesOf(with), length..., start); });
        };
        for (unsigned length = 0; length <= stream.size(); ++length) {
            QByteArray data(length + 1, '\0');
            QCOMPARE(apply(data, length, key, 16), length > 0 ? "1 b" : "0 bB");
            QCOMPARE(data, stream.first(length) + '\0');
            QCOMPARE(apply(data, length, key), length > 0 ? "1 b" : "0 bB");
            QVERIFY(data.count('\0') == length + 1 && iv.toHex() == "f0f1f2f3f4f5f6f7");
        }
        QByteArray data(8, '\0');
        QVERIFY(!blowfishECB(bytesOf(data), 8, bytesOf(key), nullptr));
        for (const QByteArray& refused : {apply(null, 8, key), apply(data, 8, null),
                                          apply(data, 8, key, 0), apply(data, 8, key, -1)})
            QCOMPARE(refused, "0 bB");
        // A published vector of the cipher.
        const auto other = QByteArray::fromHex("0123456789abcdef"), ones = QByteArray(8, '\x11');
        QVERIFY(blowfishECB(bytesOf(data), 8, bytesOf(other), 8, bytesOf(ones)));
        QCOMPARE(data.toHex(), "61f9c3802281b096");
    }
};

QTEST_GUILESS_MAIN(TestCryptoTools)
#include "tst_cryptotools.moc"
