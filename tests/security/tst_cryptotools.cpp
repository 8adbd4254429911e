#include "../log/recorder.h"

#include <pylon/pylon.h>
#include <QtTest/QtTest>

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ui.h>

using namespace pylon::CryptoTools;
using namespace pylon::plog;
using Bytes = std::span<const unsigned char>;

namespace {

// The lines there are: a letter that stands for the line, its level, the first letter of its origin
// and how its message begins; of those without a message, the whole origin.
const QStringList lines =
    QString(
        "R8lWarning = private key size: 4096 but only read 2. Ignoring load request.|"
        "k1lLoading private key from file: |K2lLoaded Private Key.|C8lError: Couldn't load |"
        "M8lRSA error message : error:|N2xError: BIO_new|P2xPEM_read_bio_X509|L2lWarning X509|"
        "i2RX509_get_pubkey|I2REVP_PKEY_get1|A8cFailed to load CA|S8cFailed to load Server|"
        "V8cX509_verify_cert|W8cErrCode: |Y2cCertificate OK|Z2cCertificate Check|B2binvalid|"
        "d1RSAPrivateDecrypt|p1x509_from_memory|l1loadX509Certificate|b1blowfishECB|"
        "s1x509CertificateIsSelfSigned|c1checkX509Certificate|v1checkCertAgainstStore")
        .split('|');

const QByteArray garbage(1024 * 1024, 'g');
EVP_PKEY *const rsa = EVP_RSA_gen(2048), *const longRsa = EVP_RSA_gen(4096);
EVP_PKEY* const ec = EVP_EC_gen("P-256");

/// Memory that the process has locked; 0 where the system does not tell.
long lockedKiB() {
    QFile file("/proc/self/status");
    file.open(QIODevice::ReadOnly);
    return QString(file.readAll()).section("VmLck:", 1).section("kB", 0, 0).toLong();
}

}  // namespace

class TestCryptoTools : public QObject {
    Q_OBJECT

    const QSharedPointer<Recorder> device = QSharedPointer<Recorder>::create();
    const QTemporaryDir folder;
    QString path = folder.filePath(u"key \u9375 \u00FC"_qs);
    CryptoError error;
    const long locked = lockedKiB();
    const bool tells = QSysInfo::kernelType() == "linux" && !QString(SANITIZER).contains("address");

    static bool isText(Bytes bytes, QByteArrayView text) { return std::ranges::equal(bytes, text); }
    static int valueOf(int result) { return result; }
    static int valueOf(RSA* key) { return RsaPointer(key) != nullptr; }
    static int valueOf(X509* certificate) { return X509Pointer(certificate) != nullptr; }
    static int valueOf(std::optional<bool> is) { return is ? *is : 2; }

    /// A null array stands for a null pointer.
    static uchar* bytesOf(const QByteArray& array) {
        return array.isNull() ? nullptr : (uchar*)array.data();
    }

    /// What a function of OpenSSL writes.
    static QByteArray written(auto write, auto... what) {
        const std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new(BIO_s_mem()), BIO_free);
        write(bio.get(), what...);
        char* bytes = nullptr;
        const long size = BIO_get_mem_data(bio.get(), &bytes);
        return QByteArray(bytes, size);
    }

    static QByteArray pemOf(EVP_PKEY* key, const EVP_CIPHER* cipher = nullptr,
                            decltype(&PEM_write_bio_PrivateKey) write = PEM_write_bio_PrivateKey) {
        return written(write, key, cipher, bytesOf("pass"), 4, nullptr, nullptr);
    }

    /// A certificate that is valid for two days around one, which is counted from now.
    static QByteArray certificate(const char* name, EVP_PKEY* key, const char* issuer,
                                  EVP_PKEY* issuerKey, int day = 0) {
        const X509Pointer owner(X509_new());
        X509* const x509 = owner.get();
        for (const auto& [field, text] : {std::pair(X509_get_subject_name(x509), name),
                                          std::pair(X509_get_issuer_name(x509), issuer)})
            X509_NAME_add_entry_by_txt(field, "CN", MBSTRING_ASC, bytesOf(text), -1, -1, 0);
        X509_gmtime_adj(X509_getm_notBefore(x509), (day - 1) * 86400L);
        X509_gmtime_adj(X509_getm_notAfter(x509), (day + 1) * 86400L);
        X509_set_pubkey(x509, key);
        X509_sign(x509, issuerKey, EVP_sha256());
        return written(PEM_write_bio_X509, x509);
    }

    /// Calls a function for a host that has left an error.
    /// @return its result, a letter for each line it logs, and the code of the error it reports.
    QString run(auto function, auto... arguments) {
        ERR_raise(ERR_LIB_USER, 77);
        device->items.clear();
        error = CryptoError();
        QString text = QString::number(valueOf(function(arguments...))) + ' ';
        for (const LogItem& item : std::as_const(device->items)) {
            const QString origin = QString(item.function()).section("pylon::CryptoTools::", 1);
            const QByteArray message = item.rawMessage();
            const QString start = QString::number(item.logLevel()) +
                                  (message.isEmpty() ? origin : origin.left(1) + message);
            const auto is = [&](const QString& line) { return start.startsWith(line.mid(1)); };
            const auto line = std::ranges::find_if(lines, is);
            const bool isOurs = item.module() == Playback && item.submods() == 8192;
            text += isOurs && line != lines.end() ? line->left(1) : "?";
        }
        text += ERR_get_error() == 0 && !error.toString().contains("(77)") ? "" : " left an error";
        return error.hasError() ? text + ' ' + QString::number(error.errorId()) : text;
    }

    void expectKey(int format, const QByteArray& expected,
                   const QString& message = "Bad private key\nOpenSSL:error:") {
        QCOMPARE(run(loadRSAPrivateKey, path, Format(format), &error), expected);
        QVERIFY(error.toString().startsWith(message) || !error.hasError());
        QCOMPARE(!RsaPointer(loadRSAPrivateKey(path, Format(format), nullptr)), error.hasError());
    }

private slots:
    void initTestCase() {
        LogManager::instance()->setLogLevel(maxLogLevel());
        LogManager::instance()->addRawDevice(device);
        UI_METHOD* const terminal = UI_create_method("terminal");
        UI_method_set_reader(terminal, [](UI*, UI_STRING*) -> int { qFatal("asked"); });
        UI_set_default_method(terminal);
    }

    void privateKeys() {
        const EVP_CIPHER* const aes = EVP_aes_128_cbc();
        constexpr auto traditional = PEM_write_bio_PrivateKey_traditional;
        const QByteArray pem = pemOf(rsa), pkcs1 = pemOf(longRsa, nullptr, traditional);
        const QByteArray der = written(i2d_PrivateKey_bio, rsa);
        const QByteArrayList good[] = {{der}, {pkcs1, pem}, {}};  // by format
        for (const QByteArray& bytes : QByteArrayList{
                 der, der.chopped(1), written(i2d_PrivateKey_bio, ec), garbage, "", pemOf(ec),
                 pemOf(rsa, aes), pemOf(rsa, aes, traditional), pem.chopped(60), pkcs1, pem}) {
            QFile file(path);
            file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
            QCOMPARE(file.write(bytes), bytes.size());
            for (int format = DER; format <= PEM + 1; ++format)
                expectKey(format, good[format].contains(bytes) ? "1 kK" : "0 kCM 2");
        }
        LogManager::instance()->setLogLevel(Error);
        LogItem::usePrettyFunction(true);
        expectKey(PEM, "1 ");
        expectKey(DER, "0 CM 2");
        error.reset();
        QVERIFY(error.hasError() && error.errorId() == 0 && error.toString().isEmpty());
        LogManager::instance()->setLogLevel(maxLogLevel());

        const RsaPointer key(loadRSAPrivateKey(path, PEM, nullptr));
        const RsaPointer open(RSAPublicKeyFromX509(bytesOf(certificate("a", rsa, "a", rsa))));
        unsigned char code[256], out[256];
        RSA_public_encrypt(5, bytesOf("plain"), code, open.get(), RSA_PKCS1_OAEP_PADDING);
        QCOMPARE(run(RSAPrivateDecrypt, 0, code, out, key.get(), RSA_NO_PADDING), "-1 d");
        QCOMPARE(run(RSAPrivateDecrypt, 256, nullptr, out, key.get(), RSA_NO_PADDING), "-1 d");
        QCOMPARE(run(RSAPrivateDecrypt, 256, code, nullptr, key.get(), RSA_NO_PADDING), "-1 d");
        QCOMPARE(run(RSAPrivateDecrypt, 256, code, out, nullptr, RSA_NO_PADDING), "-1 d");
        QCOMPARE(run(RSAPrivateDecrypt, 256, code, out, key.get(), RSA_NO_PADDING), "256 d");
        QCOMPARE(run(RSAPrivateDecrypt, 256, code, out, key.get(), RSA_PKCS1_OAEP_PADDING), "5 d");
        QVERIFY(isText({out, 5}, "plain"));

        QVERIFY(QFile::remove(path));  // which Windows refuses while it is open
        for (const QString& name : {path, folder.path()})
            path = name, expectKey(DER, "0 k 0", "Unable to open file: " + path);
        // A file of the kernel: two bytes, and says it has a page of them.
        path = "/sys/kernel/profiling";
        if (QFile(path).size() == 4096)
            expectKey(DER, "0 kR 3", "Unable to read file: " + path);
    }

    void certificates() {
        const QByteArray root = certificate("root", rsa, "root", rsa);
        const QByteArray oldRoot = certificate("root", rsa, "root", rsa, -3);
        const QByteArray impostor = certificate("root", longRsa, "root", longRsa);
        const QByteArray middle = certificate("middle", ec, "root", rsa);
        const QByteArray end = certificate("end", rsa, "middle", ec);
        // Server, authority, what comes of the check against this, of the one against itself, and
        // of the question whether it is self-signed.
        using Row = std::array<QByteArray, 5>;
        QList<Row> rows = {
            {root, root, "1 cppvY", "1 cpspvY", "1 sp"},
            {impostor, root, "0 cppvVWZ 18", "1 cpspvY", "1 sp"},
            {oldRoot, oldRoot, "0 cppvVWZ 10", "0 cpspvVWZ 10", "1 sp"},
            {middle, root, "1 cppvY", "0 cpspvVWZ 20", "0 sp"},
            {middle, impostor, "0 cppvVWZ 7", "0 cpspvVWZ 20", "0 sp"},
            {end, middle, "0 cppvVWZ 2", "0 cpspvVWZ 20", "0 sp"},
            {"first\n" + root + "last" + middle, root, "1 cppvY", "1 cpspvY", "1 sp"},
            {QByteArray(), root, "0 c", "0 c", "2 s"},
            {root, QByteArray(), "0 c", "1 cpspvY", "1 sp"}};
        const QByteArray lock = "Proc-Type: 4,ENCRYPTED\nDEK-Info: DES-CBC,0011223344556677\n\n";
        for (const QByteArray& bad : {QByteArray(""), garbage, root.chopped(30), pemOf(rsa),
                                      root.first(28) + lock + root.sliced(28)})
            rows << Row{root, bad, "0 cpPpA", "1 cpspvY", "1 sp"}
                 << Row{bad, bad, "0 cpPpPAS", "0 cpPS", "2 spP"};
        const auto check = [](auto... what) { return checkX509Certificate(what...); };
        for (const auto& [server, authority, both, alone, selfSigned] : std::as_const(rows)) {
            const char* const pem = server.isNull() ? nullptr : server.data();
            const char* const ca = authority.isNull() ? nullptr : authority.data();
            QCOMPARE(run(check, pem, ca, &error), both);
            QCOMPARE(run(check, pem, &error), alone);
            QCOMPARE(run(x509CertificateIsSelfSigned, pem), selfSigned);
        }
        QVERIFY(!checkX509Certificate(end, root, nullptr));
        QCOMPARE(run(loadX509Certificate, bytesOf(root), 0U, PEM, nullptr), "1 lp");
        QCOMPARE(run(loadX509Certificate, bytesOf(root), 0U, DER, nullptr), "0 lL");
        QCOMPARE(run(tryLoadX509Certificate, Bytes(bytesOf(root), 100)), "0 pP");
        QCOMPARE(run(RSAPublicKeyFromX509, nullptr), "0 pN");
        QCOMPARE(run(RSAPublicKeyFromX509, bytesOf(middle)), "0 pI");
        QCOMPARE(run(RSAPublicKeyFromX509i, X509Pointer(X509_new()).get()), "0 i");
    }

    void blowfish() {
        // head -c 40 /dev/zero | openssl enc -bf-ofb -provider legacy -provider default
        //     -K 000102030405060708090a0b0c0d0e0f -iv f0f1f2f3f4f5f6f7 | xxd -p
        const auto stream = QByteArray::fromHex(
            "beca2c66ff40982e84a1cda721784759dffc231621bf428bdf367bf34b4963f8d48490c49d605359");
        uchar key[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
        uchar iv[] = {0xF0, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7};
        const auto cipher = [](auto... what) { return blowfishECB(what...); };
        for (uint length = 1; length <= stream.size(); ++length) {
            QByteArray data(length + 1, '\0');
            QCOMPARE(run(cipher, bytesOf(data), length, key, 16, iv), "1 b");
            QCOMPARE(data, stream.first(length) + '\0');
            QCOMPARE(run(cipher, bytesOf(data), length, key, iv), "1 b");
            QCOMPARE(data, QByteArray(length + 1, '\0'));
        }
        uchar data[8] = {};
        QCOMPARE(run(cipher, data, 0U, key, iv), "0 bB");
        QCOMPARE(run(cipher, nullptr, 8U, key, iv), "0 bB");
        QCOMPARE(run(cipher, data, 8U, nullptr, iv), "0 bB");
        QCOMPARE(run(cipher, data, 8U, key, nullptr), "0 bB");
        QCOMPARE(run(cipher, data, 8U, key, 0, iv), "0 bB");
        // A published vector of the cipher.
        uchar other[] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
        QCOMPARE(run(cipher, data, 8U, other, 8, bytesOf(QByteArray(8, '\x11'))), "1 b");
        QCOMPARE(QByteArray((char*)data, 8).toHex(), "61f9c3802281b096");
    }

    void cleanup() { QCOMPARE(lockedKiB(), locked); }

    void symmetricKey() {
        uchar bytes[] = "key and 2";
        SymmetricKey key, alias;
        key.setKey(bytes, 7, -7);
        QVERIFY(isText({key.key(), key.size()}, "key and") && key.time() == -7);
        QVERIFY(lockedKiB() > locked || !tells);
        const uchar* const buffer = key.key();
        key.setKey(key.key() + 4, 3, 8);
        QVERIFY(isText({key.key(), key.size()}, "and") && key.key() == buffer);
        key.clear();
        QVERIFY(key.isNull() && key.time() == 0 && isText({buffer, 7}, "and and"));
        key.setKey(bytes, 9, 10);
        alias = key;
        key.setKey(nullptr, 5, 11);
        QVERIFY(key.isNull() && isText({key.key(), alias.size()}, "key and 2"));
        key = SymmetricKey();  // for only one of them may free the buffer
    }

    void lockedKey() {
        LockedKey key(Bytes(bytesOf("key and 2"), 9), 7);
        QVERIFY(isText(key.key(), "key and 2") && (lockedKiB() > locked || !tells));
        const Bytes whole = key.key();
        QVERIFY(key.setKey(whole.subspan(4, 3), 8) && isText(whole, "and\0\0\0\0\0\0"_qba));
        LockedKey moved = std::move(key);
        QVERIFY(key.isNull() && !key.isLocked() && isText(moved.key(), "and") && moved.time() == 8);
        QVERIFY(key.setKey(std::vector<uchar>(100'000, 'x')) && key.key()[99'999] == 'x');
        key = std::move(moved);
        key.clear();
        QVERIFY(key.isNull() && key.time() == 0 && whole[0] == 0);
        QVERIFY(key.setKey(whole) && key.key().data() == whole.data());
    }
};

QTEST_GUILESS_MAIN(TestCryptoTools)
#include "tst_cryptotools.moc"
