#include <pylon/data/xmlresponse.h>
#include <QtCore/QStringEncoder>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <memory>

using namespace pylon;

namespace {

const QByteArray equipment = R"(
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
  <Größe>1</Größe><gRÖSSE>2</gRÖSSE><GRÖßE>3</GRÖßE><İ>4</İ><Hi>5</Hi>
</srv:Response>
)";

QByteArray nested(int depth) {
    return QByteArray("<a>").repeated(depth) + QByteArray("</a>").repeated(depth);
}

QByteArray attributes(int count) {
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += " a" + QByteArray::number(i) + "='>'";
    return text;
}

QByteArray utf16(const char* document) {
    return QStringEncoder(QStringEncoder::Utf16BE)(QString::fromUtf8(document));
}

}  // namespace

class TestXmlResponse : public QObject {
    Q_OBJECT

private slots:
    void paths() {
        // Prefix, path, and what is found: how many, and the text of the first.
        const std::tuple<QString, QString, QString> rows[] = {
            {"", "/Response/System/Model", "1 NVR-16"},
            {"", "/anything/SYSTEM/serial", "1 "},
            {"", "/R/Cameras/Camera/Name", "1 Gate & yard"},
            {"", "/R/Cameras/Camera[1]/Name", "1 Hall 2 <rear>"},
            {"", "/R/Cameras/Camera[3]/Name", "0 null"},
            {"", "/R/Cameras/Camera[001]/Trac\u212A", "2 a"},  // the sign of the unit kelvin
            {"", "/R/Cameras/Camera[1]/Track[1]", "1 "},
            {"", "/R/V[4294967296]", "0 null"},
            {"", "/R/V[1][4]", "1 false"},
            {"", "/R/V[", "1 true"},
            {"", "/R/V[]", "1 true"},
            {"", "/R/V[4", "1 true"},
            {"", "/R/V[+1]", "1 true"},
            {"", "/R/V]", "1 true"},
            {"", "/R/]V[4]", "1 42"},
            {"", "/R/[V", "8 true"},
            {"", "/R/[2]V", "0 null"},
            {"", "/R/[]", "0 null"},
            {"", "/R/", "0 null"},
            {"", "/R//V", "0 null"},
            {"", "/R/srv:V", "0 null"},
            {"", "/R/Größe", "2 1"},
            {"", "/R/GRÖSSE", "1 2"},
            {"", "/R/i̇", "1 4"},
            {"", "/R/HI", "1 5"},
            {"", "/R/H", "0 null"},
            {"/Response/Cameras", "/Camera[1]/Track", "2 a"},
            {"/R/Sys", "tem/Model", "1 NVR-16"},
            {"/R", "/R/System/Model", "0 null"},
        };
        XmlResponse response(equipment, "");
        QVERIFY2(response.isValid(), qPrintable(response.error().message));
        for (const auto& [prefix, path, expected] : rows) {
            response.setPrefix(prefix);
            const QString text = response.getText(path);
            const QString found = QString::number(response.getAll(path).size()) + ' ' +
                                  (text.isNull() ? "null" : text);
            QCOMPARE(prefix + path + ": " + found, prefix + path + ": " + expected);
            QCOMPARE(response.get(path).isValid(), !text.isNull());
        }
    }

    void startsAnywhere() {
        XmlResponse response(equipment, "/R/Cameras");
        QStringList names, ids;
        for (const XmlResponseNode& camera : response.getAll("/Camera")) {
            names += response.getText(camera, "/Camera/Name");  // the prefix is for the root only
            ids += response.getAttribute("Id", camera, "");
        }
        QCOMPARE(names, QStringList({"Gate & yard", "Hall 2 <rear>", ""}));
        QCOMPARE(ids, QStringList({"1", "2", "3"}));

        response.setPrefix("");
        const XmlResponseNode root = response.get("A");
        QCOMPARE(root.name, "Response");
        QCOMPARE(response.getAll("V").size(), 8);
        QVERIFY(response.getAttribute("Site", "/R/System").isEmpty());
        QVERIFY(!response.getAttribute("Site", "/R/System").isNull());
        for (const char* attribute : {"site", "Id", "c:Version"})
            QVERIFY(response.getAttribute(attribute, "/R/System").isNull());
        QVERIFY(response.getAttribute("Site", "/R/Nothing").isNull());
        QVERIFY(!response.get(response.get("/R/Nothing"), "").isValid());
        QVERIFY(response.getAll(XmlResponseNode(), "/R/V").isEmpty());

        QList<bool> truths;
        QList<unsigned int> numbers;
        for (const XmlResponseNode& value : response.getAll("/R/V")) {
            truths += response.getBool(value, "");
            numbers += response.getUInt(value, "");
        }
        QCOMPARE(truths, QList<bool>({true, false, false, true, true, true, true, true}));
        QCOMPARE(numbers, QList<unsigned int>({0, 0, 0, 0, 42, 0, 4294967295, 0}));
        QVERIFY(!response.getBool("/R/Nothing") && response.getUInt("/R/Nothing") == 0);
    }

    void nodes() {
        const XmlResponse response(equipment, "");
        const XmlResponse copy = response;
        XmlResponseNode cameras = copy.get("/R/Cameras");
        QCOMPARE(cameras, response.get("/R/Cameras"));
        cameras.children[1].children.detach();
        QCOMPARE(cameras, response.get("/R/Cameras"));
        cameras.children[1].children.removeLast();
        QVERIFY(cameras != response.get("/R/Cameras"));
        QVERIFY(XmlResponse(equipment, "").get("A") != response.get("A"));
        QVERIFY(response.get("/R/V[0]") != response.get("/R/V[1]"));
        QVERIFY(!XmlResponseNode().isValid() && XmlResponseNode(cameras.element).isValid());
        QVERIFY(response.xml().contains("\n    <!-- <Camera Id=\"9\"/> -->\n"));
    }

    void limits_data() {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QString>("error");  // line:column, of what Qt refuses the line:
        const QString none;
        const QByteArray declared = "<?xml version='1.0' encoding='%'?><a/>";
        const QByteArray attributes512 = "<b" + attributes(400) + ">\n<c" + attributes(112);
        const QByteArray noElements = "<!--<a>--><?a <a>?><![CDATA[<a>]]><a b='/>' c=\">\"/>";
        const QByteArray noEnds = "<!--></a>--><?a?</a>?><![CDATA[]></a>]]><a b='/>' c=\"</a>\">";
        QTest::newRow("nothing") << QByteArray() << "1:";
        QTest::newRow("cut off") << QByteArray("<R>\n<V a='1") << "2:";
        QTest::newRow("only begun") << QByteArray("<?xml") << "1:";
        QTest::newRow("end first") << QByteArray("</a><a/>") << "1:";
        QTest::newRow("deep") << nested(256) << none;
        QTest::newRow("too deep") << nested(300'000) << "1:768";
        QTest::newRow("empty one too deep") << nested(256).insert(768, "\né<b/>") << "2:1";
        QTest::newRow("ends in texts")
            << "<R>" + noEnds.repeated(256)
            << "1:" + QString::number(3 + 255 * noEnds.size() + noEnds.lastIndexOf("<a"));
        QTest::newRow("elements in texts") << "<R>" + noElements.repeated(300) + "</R>" << none;
        QTest::newRow("attributes") << attributes512 + "/></b>" << none;
        QTest::newRow("attributes of two") << attributes512 + " d=''/></b>"
                                           << "2:0";
        QTest::newRow("entities") << QByteArray("<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>")
                                  << "1:0";
        QTest::newRow("external") << QByteArray("<!DOCTYPE a SYSTEM '[>'><a>&b;</a>") << none;
        QTest::newRow("UTF-16") << utf16("<?xml version='1.0' encoding='UTF-16'?><a/>") << none;
        QTest::newRow("UTF-16 with entities")
            << utf16("\uFEFF<!--\n--><!DOCTYPE a [<!ENTITY b 'c'>]><a/>") << "2:3";
        QTest::newRow("byte order mark")
            << "\xEF\xBB\xBF" + QByteArray(declared).replace('%', "utf-8") << none;
        QTest::newRow("Latin-1") << QByteArray(declared).replace('%', "ISO-8859-1") << none;
        for (const char* encoding : {"UTF-7", "UTF-8' encoding='IBM037"})
            QTest::newRow(encoding) << QByteArray(declared).replace('%', encoding) << "1:0";
        QTest::newRow("version") << QByteArray("<?xml version='2'?><a/>") << "1:";
    }

    // On the stack that the main thread has on Windows.
    void limits() {
        QFETCH(QByteArray, document);
        QFETCH(QString, error);
        const std::unique_ptr<QThread> thread(QThread::create([&] {
            const XmlResponse response(document, "/a");
            const XmlResponseNode root = response.get("");
            QCOMPARE(response.isValid(), error.isEmpty());
            QCOMPARE(root.isValid(), error.isEmpty());
            QCOMPARE(response.getText("").isNull(), !error.isEmpty());
            QCOMPARE(response.error().message.isEmpty(), error.isEmpty());
            QVERIFY(QString("%1:%2")
                        .arg(response.error().line)
                        .arg(response.error().column)
                        .startsWith(error));
            QVERIFY(response.xml().isEmpty() || response.isValid() || error.endsWith(':'));
        }));
        thread->setStackSize(1024 * 1024);
        thread->start();
        QVERIFY(thread->wait());
    }
};

QTEST_GUILESS_MAIN(TestXmlResponse)
#include "tst_xmlresponse.moc"
