#include <pylon/security/lockedkey.h>
#include <pylon/security/symmetrickey.h>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using namespace pylon::CryptoTools;
using Bytes = std::span<const unsigned char>;

/// Memory that the process has locked; 0 where the system does not tell.
static long lockedKiB() {
    QFile file("/proc/self/status");
    file.open(QIODevice::ReadOnly);
    return QRegularExpression("VmLck:\\s*(\\d+)").match(file.readAll()).captured(1).toLong();
}

static bool isText(Bytes bytes, QByteArrayView text) {
    return std::ranges::equal(bytes, text);
}

class TestKeyBuffers : public QObject {
    Q_OBJECT

    const long before = lockedKiB();
#ifdef __SANITIZE_ADDRESS__  // It says that it locks memory, but locks none.
    const bool tells = false;
#else
    const bool tells = QSysInfo::kernelType() == "linux";
#endif
    unsigned char bytes[9] = {'k', 'e', 'y', ' ', 'a', 'n', 'd', ' ', '2'};

private slots:
    void cleanup() {
        QCOMPARE(lockedKiB(), before);
    }

    void symmetricKey() {
        static_assert(!std::is_copy_constructible_v<SymmetricKey>);
        SymmetricKey key;
        QVERIFY(key.isNull() && !key.key() && key.time() == 0);
        key.setKey(bytes, 7, -7);
        QVERIFY(isText({key.key(), key.size()}, "key and") && key.time() == -7);
        QVERIFY(lockedKiB() > before || !tells);
        const unsigned char* const buffer = key.key();
        key.setKey(key.key() + 4, 3, 8);
        QVERIFY(isText({key.key(), key.size()}, "and") && key.key() == buffer);
        key.clear();
        QVERIFY(key.isNull() && key.time() == 0 && isText({buffer, 7}, "and and"));
        key.setKey(bytes, 9, 10);
        QVERIFY(isText({key.key(), key.size()}, "key and 2"));
        // Not destroyed, for it shares the buffer.
        alignas(SymmetricKey) std::byte place[sizeof(SymmetricKey)];
        SymmetricKey& alias = *new (place) SymmetricKey;
        alias = key;
        key.setKey(nullptr, 5, 11);
        QVERIFY(key.isNull() && alias.key() == key.key() && alias.size() == 9 &&
                alias.time() == 10);
    }

    void lockedKey() {
        static_assert(!std::is_copy_constructible_v<LockedKey>);
        LockedKey key;
        QVERIFY(key.setKey({}) && key.isNull() && !key.isLocked());
        QVERIFY(key.setKey(bytes, 7) && isText(key.key(), "key and 2") && key.time() == 7);
        QVERIFY(lockedKiB() > before || !tells);
        const Bytes whole = key.key();
        QVERIFY(key.setKey(whole.subspan(4, 3), 8));
        QVERIFY(isText(whole, QByteArrayView("and\0\0\0\0\0\0", 9)));
        LockedKey moved = std::move(key);
        QVERIFY(key.isNull() && key.time() == 0 && !key.isLocked());
        QVERIFY(isText(moved.key(), "and") && moved.time() == 8);
        key = LockedKey(std::vector<unsigned char>(100'000, 'x'));
        QVERIFY(isText(key.key(), QByteArray(100'000, 'x')));
        std::swap(key, moved);
        key.clear();
        QVERIFY(key.isNull() && key.time() == 0 && whole[0] == 0);
        QVERIFY(key.setKey(bytes) && key.key().data() == whole.data());
    }
};

QTEST_APPLESS_MAIN(TestKeyBuffers)
#include "tst_keybuffers.moc"
