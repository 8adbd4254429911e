#include <pylon/pylon.h>
#include <QtTest/QTest>

using namespace pylon;

class TestDebugOutput : public QObject {
    Q_OBJECT

private slots:
    void texts() {
        const auto text = [](const auto& value) {
            QString result;
            QDebug(&result).nospace() << value << '.';
            return result;
        };
        Image frame;
        frame.setChannel(0x10003);
        const QList<std::pair<QString, QString>> rows = {
            {text(TimeZoneAbbrevation("CET")), R"(TimeZoneAbbrevation("CET", 21).)"},
            {text(TimeZone(-14, TimeZoneAbbrevation("NST"))), R"(TimeZone(-3:30 "" "NST").)"},
            {text(ptimeval{-1, 5}), "ptimeval(-1.000005)."},
            {text(Timestamp(false)), "Timestamp()."},
            {text(plog::LogItem("a \"line\"")), "LogItem(a \"line\")."},
            {text(plog::LogFilterItem("M", {"a", "b"})), "LogFilterItem(M{a, b} not valid)."},
            {text(plog::LogModule(plog::Audio, "Audio")), "LogModule(Audio, 0x40)."},
            {text(frame), frame.toString() + '.'},
            {text(ImageHeader(frame)), "ImageHeader(channel 10003)."},
            {text(ImageHeader()), "ImageHeader(null)."},
            {text(LyraUrl("[::1]:80")), "LyraUrl([::1]:80)."},
            {text(NDCRect{-1, 0.5, 2, 3}), "NDCRect(left -1, top 0.5, right 2, bottom 3)."},
            {text(XmlResponseNode()), "XmlResponseNode(invalid)."},
            {text(XmlResponse("<a><b/></a>", "/p")),
             R"(XmlResponse(XmlResponseNode("a", 1 children), prefix "/p").)"},
            {text(XmlResponseError{2, 3, "why"}), "XmlResponseError(2:3 why)."}};
        for (const auto& [actual, expected] : rows)
            QCOMPARE(actual, expected);
    }

    void keys() {
        QCOMPARE(QSet<TimeZone>({TimeZone(4, "A"), TimeZone(4, "A"), TimeZone(5, "A")}).size(), 2);
        QCOMPARE(QSet<LyraUrl>({LyraUrl("a"), LyraUrl("A"), LyraUrl("a:1")}).size(), 2);
        QCOMPARE(QSet<TimeZoneAbbrevation>({29, 32, 29}).size(), 2);
    }
};

QTEST_GUILESS_MAIN(TestDebugOutput)
#include "tst_debugoutput.moc"
