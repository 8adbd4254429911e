#include "framebytes.h"

#include <pylon/media/image.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <iostream>
#include <sstream>

using namespace pylon;

namespace {

const QString imagesFolder = "/TestServerData/unit/images/";

// Dumps the bytes and returns what that prints.
QString dump(const QByteArray& bytes, const Image& frame) {
    std::ostringstream output;
    std::streambuf* const before = std::cout.rdbuf(output.rdbuf());
    Image::dump(bytes.constData(), static_cast<quint32>(bytes.size()), frame, 7, 0, 4294967295);
    std::cout.rdbuf(before);
    return QString::fromStdString(output.str());
}

}  // namespace

class TestImageDump : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void dumps_data();
    void dumps();
    void needsItsFolder();
    void undumps();
    void sizeFromFile_data();
    void sizeFromFile();
    void cleanup();

private:
    QTemporaryDir home_;
    QTemporaryDir temporary_;
    QString images_;
};

void TestImageDump::initTestCase() {
    qputenv("HOME", QFile::encodeName(home_.path()));
    images_ = QDir::homePath() + imagesFolder;
}

// The home folder may be a real one, where the system does not ask the environment for it.
void TestImageDump::cleanup() {
    for (const QString& folder : {images_ + "event/", images_}) {
        const auto dumped = QDir(folder).entryList({"img-7_0_4294967295--5_4_CET-*"});
        for (const QString& name : dumped)
            QFile::remove(folder + name) || QDir(folder).rmdir(name);
        QDir().rmpath(folder);
    }
}

void TestImageDump::dumps_data() {
    QTest::addColumn<QByteArray>("block");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<quint32>("channel");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("ending");
    const auto row = [](const char* name, const char* block, const char* payload, quint32 channel,
                        const QString& folder, const QString& ending) {
        QTest::newRow(name) << hex(block) << hex(payload) << channel << folder << ending;
    };
    row("no slots", "", "ff01", 0x20104, "",
        "131332-260-2-0-136-1-0-22-2-2-0-0-0-0-0-0-0-0--1-0-0-0-0-.bin");
    row("negative sum, event", "", "ff", 255, "event/",
        "255-255-0-0-136-1-0-21-1-1-18446744073709551615-0-0-0-0-0-0-0--1-0-0-0-0-.bin");
    row("every slot", "5200 46726f6e7420646f6f7200 0109 02037f 0101 6800 7e7e", "", 3, "",
        "3-3-0-0-136-1-0-44-0-0-0-1-10-1-2-1-1-2-9-130-252-82-989-Front_door.bin");
    row("UTF-8", "00 c3bc20c3bc", "", 3, "",
        QString("3-3-0-0-136-1-0-26-0-0-0-0-5-0-0-0-0-0--1-0-0-0-18446744073709551390-%1_%1.bin")
            .arg(QChar(0xFC)));
    row("leads elsewhere", "00 2f2e2e2f78", "", 3, "not dumped",
        "3-3-0-0-136-1-0-26-0-0-0-0-5-0-0-0-0-0--1-0-0-0-306-/../x.bin");
}

void TestImageDump::dumps() {
    QFETCH(QByteArray, block);
    QFETCH(QByteArray, payload);
    QFETCH(quint32, channel);
    QFETCH(QString, folder);
    QFETCH(QString, ending);
    const QByteArray bytes = headerBytes(block, payload.size()) + payload;
    Image frame(bytes);
    frame.setChannel(channel);
    frame.setTime(-5);
    frame.setTimeZone(TimeZone(4, TimeZoneAbbrevation("CET")));
    frame.setFlags(0x88);
    frame.setEncrypted(true);

    const QString name = "img-7_0_4294967295--5_4_CET-V-p-" + ending;
    const QString length = QString::number(name.toUtf8().size());
    const bool expected = folder != "not dumped";
    QVERIFY(QDir().mkpath(images_ + "event/"));
    QVERIFY(expected || QDir(images_).mkdir(name.section('/', 0, 0)));
    QCOMPARE(dump(bytes, frame), (expected ? "    dumped" : "not dumped") +
                                     (" filename size=" + length) + "  " + name + "\n");
    Image back;
    QCOMPARE(back.undump(images_ + folder + name), expected);
    QCOMPARE(back.payload(), expected ? payload : QByteArray());
    QCOMPARE(back.extension(ImageHeaderExtension::CameraName),
             expected ? frame.extension(ImageHeaderExtension::CameraName) : QByteArray());
}

void TestImageDump::needsItsFolder() {
    QVERIFY(!QFile::exists(images_));
    QVERIFY(dump("data", Image()).startsWith("not dumped filename size="));
    QVERIFY(!QFile::exists(images_));
}

void TestImageDump::undumps() {
    const QString path = temporary_.filePath("frame.bin");
    const auto write = [&](const QByteArray& bytes) {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    };
    Image image(headerBytes("", 3) + "old");
    for (const QString& missing : {temporary_.filePath("missing"), temporary_.path()}) {
        QVERIFY(!image.undump(missing));
        QCOMPARE(image.payload(), "old");
    }
    QVERIFY(write(headerBytes("", 3) + "new."));
    QCOMPARE(errorOf([&] { image.undump(path); }), "Size mismatch");
    QVERIFY(write(""));
    QCOMPARE(errorOf([&] { image.undump(path); }), "Unknown header protocol");
    QVERIFY(write(headerBytes("", 3) + "new"));
    QVERIFY(image.undump(path));
    QCOMPARE(image.payload(), "new");
}

void TestImageDump::sizeFromFile_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<quint32>("size");
    QTest::addColumn<QByteArray>("error");
    QTest::newRow("1000") << hex("e8030080") << 1000U << QByteArray();
    QTest::newRow("largest") << hex("ffffff83 00") << 0x3FFFFFFU << QByteArray();
    QTest::newRow("legacy") << hex("ffffffff") << 42U << QByteArray("Protocol support dropped");
    QTest::newRow("marker") << hex("e8030040") << 42U << QByteArray("Unknown header protocol");
    QTest::newRow("3 bytes") << hex("e80300") << 42U << QByteArray("Unknown header protocol");
    QTest::newRow("end") << QByteArray() << 42U << QByteArray("Unknown header protocol");
}

void TestImageDump::sizeFromFile() {
    QFETCH(QByteArray, bytes);
    QFile file(temporary_.filePath("frames"));
    QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Truncate));
    file.write("skipped" + bytes);
    file.seek(7);
    quint32 size = 42;
    QTEST(errorOf([&] { Image().determineSizeFromFile(file, size); }), "error");
    QTEST(size, "size");
    QCOMPARE(file.pos(), 7);
}

QTEST_GUILESS_MAIN(TestImageDump)
#include "tst_imagedump.moc"
