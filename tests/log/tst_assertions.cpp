#include "../files.h"

#include <pylon/pylon.h>
#include <QtTest/QtTest>

using namespace pylon::plog;

namespace {

const QString failed("ERROR pAssert : ASSERT FAILED! Assert condition: %1, File f.cpp, Line %2\n");
const QString failedX("ERROR pAssertX : ASSERT FAILED in place: what, File f.cpp, Line %1\n");
const QString warned(" WARN %1 : %1 is not currently static (waiting on version 6 and Qt5)\n");

int number = 0;

void failNothing() {
    pAssert(true, "a", "f", 1);
    pStaticAssertX(true, "a", "b", "f", 1);
    disable_pAssert();
    P_ASSERT(++number > 1);
    P_ASSERT_X(++number > 1, "a", "b");
    enable_pAssert();
    P_ASSERT_X(number == 0 && is_pAssertEnabled(), "a", "disabled macros evaluate nothing");
}

// Last deeds of a process, and what is in its log then.
const struct {
    void (*run)();
    QString words;
} rows[] = {
    {[] { disable_pAssert(), pAssert(false, "a < b", "f.cpp", 7); }, failed.arg("a < b").arg(7)},
    {[] { pAssertX(false, "place", "what", "f.cpp", 8); }, failedX.arg(8)},
    {[] { pStaticAssert(false, "e", "f.cpp", 9); },
     warned.arg("pStaticAssert") + failed.arg("e").arg(9)},
    {[] { pStaticAssertX(false, "place", "what", "f.cpp", 9); },
     warned.arg("pStaticAssertX") + failedX.arg(9)},
    {[] { P_ASSERT(number > 1); }, failed.arg("number > 1").arg(__LINE__)},
    {[] { P_ASSERT_X(number > 1, "place", "what"); }, failedX.arg(__LINE__)},
    {[] { installQtMessageHandler(), QMessageLogger().fatal("bye"); }, "ERROR Qt : bye\n"},
    {[] { LogManager::instance()->setFilter(QString(256, u'x'), nullptr); }, ""},
    {failNothing, warned.arg("pStaticAssertX") + "returned"}};

/// In a process of its own, whose log file gathers lines in memory and whose console does not.
QString runRow(int row) {
    const QTemporaryDir dir;
    const QString log = dir.filePath("log");
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {"--row", QString::number(row), log});
    process.waitForFinished(60'000);
    QString words;
    for (const QByteArray& line : readAll(log).replace(__FILE__, "f.cpp").split('\n'))
        if (line.contains("][  PylonSDK]["))
            words += line.mid(18, 5) + ' ' + line.mid(line.indexOf("]  ") + 1).simplified() + '\n';
    if (process.readAllStandardOutput().count("][  PylonSDK][") != words.count('\n'))
        return "the console has more or less than " + words;
    return process.exitStatus() || process.exitCode() ? words : words + "returned";
}

}  // namespace

class TestAssertions : public QObject {
    Q_OBJECT

private slots:
    void lastWords() {
        for (int row = 0; row < int(std::size(rows)); ++row)
            QCOMPARE(runRow(row), rows[row].words);
    }
};

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    TestAssertions test;
    if (argc != 4 || qstrcmp(argv[1], "--row") != 0)
        return QTest::qExec(&test, argc, argv);
    const auto file = QSharedPointer<LogFile>::create(argv[3], QIODevice::Truncate, false);
    LogManager::instance()->addLogDevice(file);
    LogManager::instance()->addLogDevice(QSharedPointer<LogConsole>::create(stdout, true));
    rows[QByteArray(argv[2]).toInt()].run();
    return 0;
}

#include "tst_assertions.moc"
