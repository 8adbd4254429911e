#include "childprocess.h"

#include <pylon/log/assertions.h>
#include <QtTest/QTest>

namespace {

void runChild(const QByteArray& what) {
    using namespace pylon::plog;
    int evaluated = 0;
    if (what == "pAssert")
        pAssert(false, "a < b", "file.cpp", 7);
    else if (what == "pAssertX")
        pAssertX(false, "place", "what", "file.cpp", 8);
    else if (what == "pStaticAssert")
        pStaticAssert(false, "expr", "file.cpp", 9);
    else if (what == "pStaticAssertX")
        pStaticAssertX(false, "place", "what", "file.cpp", 10);
    else if (what == "macro")
        P_ASSERT(++evaluated > 1);
    else if (what == "macro X")
        P_ASSERT_X(++evaluated > 1, "place", "what");
    else if (what == "switched off")
        pAssert((disable_pAssert(), false), "still ends", "file.cpp", 11);
    else if (what == "level disabled") {
        LogManager::instance()->setLogLevel(0);
        pAssert(false, "unseen", "file.cpp", 12);
    } else if (what == "nothing fails") {
        pAssert(true, "a", "f", 1);
        pAssertX(true, "a", "b", "f", 1);
        pStaticAssert(true, "a", "f", 1);
        pStaticAssertX(true, "a", "b", "f", 1);
        P_ASSERT(evaluated == 0);
        disable_pAssert();
        P_ASSERT(++evaluated > 1);
        P_ASSERT_X(++evaluated > 1, "a", "b");
        enable_pAssert();
        P_ASSERT_X(evaluated == 0 && is_pAssertEnabled(), "a", "disabled macros evaluate nothing");
    }
}

}  // namespace

class TestAssertions : public QObject {
    Q_OBJECT

private slots:
    void lastLines_data() {
        QTest::addColumn<bool>("ends");
        // Of each line behind the banner: level, function and message.
        QTest::addColumn<QList<QByteArray>>("lines");
        const auto row = [](const char* what, bool ends, const QList<QByteArray>& lines) {
            QTest::newRow(what) << ends << lines;
        };
        const QByteArray staticLine =
            " WARN|pStaticAssert|pStaticAssert is not currently static (waiting on version 6 and "
            "Qt5)";
        const QByteArray staticLineX =
            " WARN|pStaticAssertX|pStaticAssertX is not currently static (waiting on version 6 and "
            "Qt5)";
        row("pAssert", true,
            {"ERROR|pAssert|ASSERT FAILED! Assert condition: a < b, File file.cpp, Line 7"});
        row("pAssertX", true,
            {"ERROR|pAssertX|ASSERT FAILED in place: what, File file.cpp, Line 8"});
        row("pStaticAssert", true,
            {staticLine,
             "ERROR|pAssert|ASSERT FAILED! Assert condition: expr, File file.cpp, Line 9"});
        row("pStaticAssertX", true,
            {staticLineX, "ERROR|pAssertX|ASSERT FAILED in place: what, File file.cpp, Line 10"});
        row("macro", true,
            {"ERROR|pAssert|ASSERT FAILED! Assert condition: ++evaluated > 1, File "});
        row("macro X", true, {"ERROR|pAssertX|ASSERT FAILED in place: what, File "});
        row("switched off", true,
            {"ERROR|pAssert|ASSERT FAILED! Assert condition: still ends, File file.cpp, Line 11"});
        row("level disabled", true, {});
        row("nothing fails", false, {staticLine, staticLineX});
    }

    void lastLines() {
        QFETCH(bool, ends);
        QFETCH(QList<QByteArray>, lines);
        const ChildRun run = ChildRun::of(QString::fromLatin1(QTest::currentDataTag()));
        QCOMPARE(run.endedByItself, !ends);
        QList<QByteArray> logged;
        for (const QByteArray& line : run.log.split('\n')) {
            if (!line.contains("][  PylonSDK]["))
                continue;
            logged.append(line.mid(18, 5) + '|' + line.mid(line.indexOf("]  ") + 29, 40).trimmed() +
                          '|' + line.mid(line.indexOf("]  ") + 71));
        }
        QCOMPARE(logged.size(), lines.size());
        for (qsizetype i = 0; i < lines.size(); ++i)
            QVERIFY2(logged[i].startsWith(lines[i]), logged[i].constData());
    }
};

int main(int argc, char** argv) {
    if (ChildRun::isChild(argc, argv))
        return ChildRun::child(argc, argv, runChild);
    QCoreApplication application(argc, argv);
    TestAssertions test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_assertions.moc"
