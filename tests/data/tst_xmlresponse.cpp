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
  <Größe>1</Größe><gRÖSSE>2</gRÖSSE><GRÖßE>3</GRÖßE><İ>4</İ><Az>5</Az>
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
            {"", "/R/aZ", "1 5"},
            {"", "/R/a", "0 null"},
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
        XmlResponseNode invalid = root;
        invalid.valid = false;
        QVERIFY(response.getAll(invalid, "/R/V").isEmpty());

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

    void limits() {
        const QByteArray attributes512 = "<b" + attributes(400) + ">\n<c" + attributes(112);
        const QByteArray noElements =
            "<!--<a>--><?a <a>?><![CDATA[<a>]]><a b='/>' c=\">\"/><a></a>";
        const QByteArray noEnds = "<!--></a>--><?a?</a>?><![CDATA[]></a>]]><a b='/>' c=\"</a>\">";
        const auto lastOf256 = 3 + 255 * noEnds.size() + noEnds.lastIndexOf("<a");
        const auto declared = [](const char* encoding) {
            return QByteArray("<?xml version='1.0' encoding='%'?><a/>").replace('%', encoding);
        };
        // A document and where it is refused, line:column; of what Qt refuses only the line.
        const std::pair<QByteArray, QString> rows[] = {
            {"", "1:"},
            {"<R/>\n<V a='1", "2:"},
            {"<?xml", "1:"},
            {"</a><a/>", "1:"},
            {nested(256), ""},
            {nested(300'000), "1:768"},
            {nested(256).insert(768, "\né<b/>"), "2:1"},
            {"<R>" + noElements.repeated(300) + "</R>", ""},
            {"<R>" + noEnds.repeated(256), "1:" + QString::number(lastOf256)},
            {attributes512 + "/></b>", ""},
            {attributes512 + " d=''/></b>", "2:0"},
            {"<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>", "1:0"},
            {"<!DOCTYPE a SYSTEM '[>'><a>&b;</a>", ""},
            {utf16("<?xml version='1.0' encoding='UTF-16'?><a/>"), ""},
            {utf16("\uFEFF<!--\n--><!DOCTYPE a [<!ENTITY b 'c'>]><a/>"), "2:3"},
            {"\xEF\xBB\xBF" + declared("utf-8"), ""},
            {declared("ISO-8859-1"), ""},
            {"\xEF\xBB\xBF" + declared("UTF-7"), "1:0"},
            {declared("UTF-8' encoding='IBM037"), "1:0"},
            {"<?xml version='2'?><a/>", "1:"},
        };
        // On the stack that the main thread has on Windows.
        const std::unique_ptr<QThread> thread(QThread::create([&] {
            for (const auto& [document, expected] : rows) {
                const XmlResponse response(document, "/a");
                const XmlResponseError error = response.error();
                QString place;
                if (!error.message.isEmpty())
                    place = QString("%1:%2").arg(error.line).arg(error.column);
                QCOMPARE(expected.endsWith(':') ? place.left(2) : place, expected);
                const bool isValid = expected.isEmpty();
                QVERIFY(response.isValid() == isValid && response.get("").isValid() == isValid);
                QCOMPARE(response.getText("").isNull(), !isValid);
                QVERIFY(isValid || response.xml().isEmpty() || expected.endsWith(':'));
            }
        }));
        thread->setStackSize(1024 * 1024);
        thread->start();
        QVERIFY(thread->wait());
    }
};

QTEST_GUILESS_MAIN(TestXmlResponse)
#include "tst_xmlresponse.moc"
