#include <pylon/platform/osal.h>
#include <pylon/platform/synchronousprocess.h>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <cerrno>
#include <cstdarg>

static int format(char* buffer, std::size_t size, const char* text, ...) {
    va_list values;
    va_start(values, text);
    const int result = osal::vsnprintf_c99(buffer, size, text, values);
    va_end(values);
    return result;
}

class TestOsal : public QObject {
    Q_OBJECT

private slots:
    void opensUnicodePaths() {
        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("żółw \u8239\u8236 \U0001F6A2.txt"));
        FILE* file = nullptr;
        QVERIFY(osal::fopen(&file, path, "rb") == ENOENT && !file);
        QCOMPARE(osal::fopen(&file, path, "wb"), 0);
        std::fclose(file);
        QVERIFY(QFile::exists(path));
    }

    void environmentAndPipes() {
        qputenv("PYLON_TEST_VARIABLE", "value");
        QCOMPARE(osal::getenv("PYLON_TEST_VARIABLE"), "value");
        QVERIFY(osal::getenv("PYLON_TEST_UNSET_VARIABLE").isEmpty());
        FILE* pipe = osal::popen("echo ready && exit 3", "r");
        char line[16] = {};
        QVERIFY(std::fgets(line, sizeof line, pipe) && QByteArray(line).startsWith("ready"));
        QCOMPARE(osal::pclose(pipe), 3);
    }

    // What does not fit with its terminator is left out or cut; nothing behind the size changes.
    void boundedText() {
        char buffer[] = "######", error[] = "######", whole[128], text[] = ";;one;two";
        osal::strcpy(buffer, 4, "four");
        QCOMPARE(QByteArray(buffer, 6), QByteArray("\0#####", 6));
        osal::strcpy(buffer, 5, "four");
        osal::strcpy(buffer, 0, nullptr);
        QCOMPARE(QByteArray(buffer, 6), QByteArray("four\0#", 6));
        QVERIFY(osal::strerror(whole, sizeof whole, ENOENT) == 0 && qstrlen(whole) > 4);
        osal::strerror(error, 4, ENOENT);
        QCOMPARE(QByteArray(error, 6), QByteArray(whole, 3) + QByteArray("\0##", 3));
        QCOMPARE(osal::strtok(text, ";"), "one");
        QCOMPARE(osal::strtok(text, ";"), "one");  // starts afresh
        text[2] = '\0';
        QVERIFY(!osal::strtok(text, ";") && !osal::strtok(nullptr, ";"));
    }

    void formatsLikeC99() {
        char buffer[] = "########";
        QCOMPARE(format(buffer, 4, "%s", "ten chars!"), 10);
        QCOMPARE(QByteArray(buffer, 8), QByteArray("ten\0####", 8));
        QCOMPARE(format(nullptr, 0, "%zu-%lld", std::size_t{7}, 8LL), 3);
        QVERIFY(format(buffer, 8, "%hhx %06.1f", 0x1FF, 2.25) == 9 &&
                qstrcmp(buffer, "ff 0002") == 0);
        QCOMPARE(format(nullptr, 0, nullptr), -1);
    }

    void processIsKnownByName() {
        const QMetaType type = QMetaType::fromName("pylon::SynchronousProcess*");
        QObject owner;
        QVERIFY(type.metaObject() && type.metaObject()->newInstance(Q_ARG(QObject*, &owner)));
    }
};

QTEST_MAIN(TestOsal)
#include "tst_osal.moc"
