#include <pylon/platform/osal.h>
#include <pylon/platform/synchronousprocess.h>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <cerrno>
#include <cstdarg>
#include <cstring>

namespace {

int format(char* buffer, std::size_t size, const char* text, ...) {
    va_list values;
    va_start(values, text);
    const int result = osal::vsnprintf_c99(buffer, size, text, values);
    va_end(values);
    return result;
}

}  // namespace

class TestOsal : public QObject {
    Q_OBJECT

private slots:
    void opensUnicodePaths() {
        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("żółw \u8239\u8236 \U0001F6A2.txt"));
        FILE* file = nullptr;
        QCOMPARE(osal::fopen(&file, path, QStringLiteral("rb")), ENOENT);
        QVERIFY(!file);
        QCOMPARE(osal::fopen(&file, path, QStringLiteral("wb")), 0);
        QVERIFY(file);
        std::fputs("x", file);
        std::fclose(file);
        QVERIFY(QFile::exists(path));
        QCOMPARE(osal::fopen(nullptr, path, QStringLiteral("rb")), EINVAL);
    }

    void environment() {
        QVERIFY(osal::getenv(QStringLiteral("PYLON_TEST_UNSET_VARIABLE")).isEmpty());
        qputenv("PYLON_TEST_VARIABLE", "value");
        QCOMPARE(osal::getenv(QStringLiteral("PYLON_TEST_VARIABLE")), QStringLiteral("value"));
    }

    void pipesGiveExitCodes() {
        FILE* pipe = osal::popen("echo ready", "r");
        QVERIFY(pipe);
        char line[16] = {};
        QVERIFY(std::fgets(line, sizeof line, pipe));
        QVERIFY(std::strncmp(line, "ready", 5) == 0);
        QCOMPARE(osal::pclose(pipe), 0);
        QCOMPARE(osal::pclose(osal::popen("exit 3", "r")), 3);
        QVERIFY(!osal::popen(nullptr, "r"));
    }

    void boundedCopy_data() {
        QTest::addColumn<int>("size");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("no room at all") << 0 << QByteArray("######");
        QTest::newRow("terminator only") << 1 << QByteArray("\0#####", 6);
        QTest::newRow("one short") << 4 << QByteArray("\0#####", 6);
        QTest::newRow("fits") << 5 << QByteArray("four\0#", 6);
    }

    void boundedCopy() {
        QFETCH(int, size);
        QByteArray buffer(6, '#');
        osal::strcpy(buffer.data(), size, "four");
        QTEST(buffer, "expected");
    }

    void errorTextsAreCut() {
        char whole[128];
        QCOMPARE(osal::strerror(whole, sizeof whole, ENOENT), 0);
        QVERIFY(std::strlen(whole) > 4);
        char cut[] = "######";
        osal::strerror(cut, 4, ENOENT);
        QCOMPARE(QByteArray(cut), QByteArray(whole).left(3));
        QCOMPARE(cut[5], '#');
        QVERIFY(osal::strerror(nullptr, 0, ENOENT) != 0);
    }

    void tokensStartAfresh() {
        char text[] = ";;one;two";
        QCOMPARE(osal::strtok(text, ";"), "one");
        QCOMPARE(osal::strtok(text, ";"), "one");
        char separators[] = ";;";
        QVERIFY(!osal::strtok(separators, ";"));
        QVERIFY(!osal::strtok(nullptr, ";"));
    }

    void formatsLikeC99() {
        char buffer[] = "########";
        QCOMPARE(format(buffer, 4, "%s", "ten chars!"), 10);
        QCOMPARE(buffer, "ten");
        QCOMPARE(buffer[4], '#');
        QCOMPARE(format(nullptr, 0, "%zu-%lld", std::size_t{7}, 8LL), 3);
        QCOMPARE(format(buffer, sizeof buffer, "%hhx %06.1f", 0x1FF, 2.25), 9);
        QCOMPARE(buffer, "ff 0002.");
        QCOMPARE(format(buffer, sizeof buffer, nullptr), -1);
    }

    void processIsKnownByName() {
        const QMetaType type = QMetaType::fromName("pylon::SynchronousProcess*");
        QVERIFY(type.isValid() && type.metaObject());
        const QScopedPointer<QObject> made(
            type.metaObject()->newInstance(Q_ARG(QObject*, nullptr)));
        QVERIFY(qobject_cast<pylon::SynchronousProcess*>(made.data()));
    }
};

QTEST_MAIN(TestOsal)
#include "tst_osal.moc"
