#include <pylon/data/xmlresponse.h>
#include <QtTest/QtTest>

using namespace pylon;

static const QByteArray equipment = R"(
  <?xml version="1.0" encoding="UTF-8"?>
<srv:Response xmlns:srv="urn:server" xmlns:c="urn:camera">
  <System Version="6.52" Site=""><Model>NVR-16</Model><Serial/></System>
  <c:Cameras>
    <c:Camera Id="1"><Name>Gate &amp; yard</Name></c:Camera>
    <!-- <Camera Id="9"/> -->
    <camera Id="2"><c:Name>Hall <b>2</b><![CDATA[ <rear>]]></c:Name><Track>a</Track><Track/></camera>
    <CAMERA c:Id="3"><name>   </name></CAMERA>
  </c:Cameras>
  <V>true</V><V>false</V><V/><V>FALSE</V><V>42</V><V>-1</V><V>4294967295</V><V>4294967296</V>
  <Größe>1</Größe><gRÖSSE>2</gRÖSSE>
</srv:Response>
)";

static QByteArray nested(int depth, const QByteArray& tag) {
    return tag.repeated(depth) + QByteArray("</a>").repeated(depth);
}

static QByteArray utf16(const char* document) {
    return QStringEncoder(QStringEncoder::Utf16BE)(QString::fromUtf8(document));
}

class TestXmlResponse : public QObject {
    Q_OBJECT

private slots:
    void paths() {
        // A path, and what is found: how many, and the text of the first.
        const std::pair<QString, QString> rows[] = {
            {"/Response/System/Model", "1 NVR-16"},
            {"/anything/SYSTEM/serial", "1 "},
            {"/R/Cameras/Camera/Name", "1 Gate & yard"},
            {"/R/Cameras/Camera[1]/Name", "1 Hall 2 <rear>"},
            {"/R/Cameras/Camera[3]/Name", "0 null"},
            {"/R/Cameras/Camera[01]/Track", "2 a"},
            {"/R/V[4294967296]", "0 null"},
            {"/R/V[1][4]", "1 false"},
            {"/R/V[4", "1 true"},
            {"/R/[V", "8 true"},
            {"/R/[]", "0 null"},
            {"/R//V", "0 null"},
            {"/R/Syste", "0 null"},
            {"/R/grösse", "1 2"}};
        const XmlResponse response(equipment, "");
        for (const auto& [path, expected] : rows) {
            const QString text = response.getText(path);
            const QString found = QString::number(response.getAll(path).size()) + ' ' +
                                  (text.isNull() ? "null" : text);
            QCOMPARE(path + ": " + found, path + ": " + expected);
        }
    }

    void values() {
        XmlResponse response(equipment, "/R/Cameras");
        QStringList cameras, values;
        // The prefix is for the root only.
        for (const XmlResponseNode& camera : response.getAll("/Camera"))
            cameras +=
                response.getAttribute("Id", camera, "") + response.getText(camera, "/Camera/Name");
        QCOMPARE(cameras, QStringList({"1Gate & yard", "2Hall 2 <rear>", "3"}));

        response.setPrefix("");
        for (const XmlResponseNode& value : response.getAll("V"))
            values += (response.getBool(value, "") ? "+" : "-") +
                      QString::number(response.getUInt(value, ""));
        QCOMPARE(values.join(' '), "+0 -0 -0 +0 +42 +0 +4294967295 +0");
        QVERIFY(!response.getAttribute("Site", "/R/System").isNull());
        QVERIFY(response.getAttribute("site", "/R/System").isNull());
        QVERIFY(response.getAttribute("Site", "/R/Nothing").isNull());
    }

    void nodes() {
        const XmlResponse response(equipment, ""), copy = response, other(equipment, "");
        XmlResponseNode cameras = copy.get("/R/Cameras");
        QCOMPARE(cameras.name, "Cameras");
        QCOMPARE(cameras, response.get("/R/Cameras"));
        QVERIFY(cameras != other.get("/R/Cameras"));
        cameras.children[1].children.removeLast();
        QVERIFY(cameras != response.get("/R/Cameras"));
        QVERIFY(response.xml().contains("\n    <!-- <Camera Id=\"9\"/> -->\n"));
    }

    void limits() {
        const QByteArray noEnds = "<!--></a>--><?a?</a>?><![CDATA[></a>]]><a b='/>' c=\"</a>\">";
        const auto lastOf256 = 3 + 255 * noEnds.size() + noEnds.lastIndexOf("<a");
        // A document, and where and why it is refused, or 0:0; what Qt says of it may change.
        const std::pair<QByteArray, QString> rows[] = {
            {"", "1:"},
            {"<R/>\n<V a='1", "2:"},
            {"</a><a/><!--", "1:"},
            {nested(256, "<a>"), "0:0 "},
            {nested(300'000, "<a>"), "1:768 Elements"},
            {nested(256, "<a>").insert(768, "\né<b/>"), "2:1 Elements"},
            {nested(256, "<a b='>' c=''>"), "0:0 "},  // 512 attributes on the last and around it
            {nested(171, "<a b='' c='' d=''>"), "1:3060 Too many"},
            {"<R>" + QByteArray("<a/><?a <a>?><a></a>").repeated(300) + "</R>", "0:0 "},
            {"<R>" + noEnds.repeated(256), QString("1:%1 Elements").arg(lastOf256)},
            {"<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>", "1:0 Document type"},
            {"<!DOCTYPE a SYSTEM '[>'><a>&b;</a>", "0:0 "},
            {utf16("<?xml version='1.0' encoding='UTF-16'?><a/>"), "0:0 "},
            {utf16("\uFEFF<!--\n--><!DOCTYPE a [<!ENTITY b 'c'>]><a/>"), "2:3 Document type"},
            {"\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?><a/>", "0:0 "},
            {"\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-7'?><a/>", "1:0 XML declaration"}};
        // On the stack that the main thread has on Windows.
        const QScopedPointer<QThread> thread(QThread::create([&] {
            for (const auto& [document, expected] : rows) {
                const XmlResponse response(document, "");
                const auto [line, column, message] = response.error();
                const QString found = QString("%1:%2 %3").arg(line).arg(column).arg(message);
                QVERIFY2(found.startsWith(expected), qPrintable(found));
                QVERIFY(response.isValid() == (line == 0));
                QVERIFY(response.get("").isValid() == (line == 0));
            }
        }));
        thread->setStackSize(1024 * 1024);
        thread->start();
        QVERIFY(thread->wait());
    }
};

QTEST_GUILESS_MAIN(TestXmlResponse)
#include "tst_xmlresponse.moc"
