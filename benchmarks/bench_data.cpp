// Replies and addresses: reading a large reply beside Qt's parser alone, a query beside pugixml's,
// and what sorting saves by reading each address once.

#include <benchmark/benchmark.h>
#include <pylon/data/compareipaddresses.h>
#include <pylon/data/xmlresponse.h>
#include <pugixml.hpp>

#include <algorithm>
#include <random>
#include <stdexcept>

using namespace pylon;

namespace {

void require(bool condition, const char* what) {
    if (!condition)
        throw std::runtime_error(what);
}

// A list of devices as a server sends it, of about this size.
QByteArray deviceList(qsizetype size) {
    QByteArray reply =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<s:Response xmlns:s=\"urn:server\">\n";
    for (int id = 1; reply.size() < size; ++id) {
        const QByteArray number = QByteArray::number(id);
        reply += "  <s:Device id=\"" + number + "\" state=\"online\">\n    <Name>Camera " + number +
                 " &amp; microphone</Name>\n    <Address>10.0." +
                 QByteArray::number(id / 250 % 250) + '.' + QByteArray::number(id % 250) +
                 ":8601</Address>\n    <Recording><Enabled>true</Enabled><Days>30</Days>"
                 "</Recording>\n    <!-- tracks -->\n    <Track codec=\"H264\" fps=\"25\"/>"
                 "<Track codec=\"G711\"/>\n    <Note><![CDATA[north < south]]></Note>\n"
                 "  </s:Device>\n";
    }
    return reply + "</s:Response>\n";
}

constexpr qsizetype largeReply = 5'000'000;

void readReply(benchmark::State& state) {
    const QByteArray reply = deviceList(largeReply);
    require(XmlResponse(reply, QString()).isValid(), "reply");
    for (auto _ : state)
        benchmark::DoNotOptimize(XmlResponse(reply, QString()).isValid());
}

void parseReply(benchmark::State& state) {
    const QByteArray reply = deviceList(largeReply);
    for (auto _ : state) {
        QDomDocument document;
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
        benchmark::DoNotOptimize(
            bool(document.setContent(reply, QDomDocument::ParseOption::UseNamespaceProcessing)));
#else
        benchmark::DoNotOptimize(document.setContent(reply, true));
#endif
    }
}

void children(benchmark::State& state, int count) {
    const XmlResponse response("<Response>" + QByteArray("<Item/>").repeated(count) + "</Response>",
                               QString());
    const QString path = QStringLiteral("/Response/Item");
    require(response.getAll(path).size() == count, "children");
    for (auto _ : state)
        benchmark::DoNotOptimize(response.getAll(path).constData());
}

// Four levels of twenty elements each; all but one of a level are leaves.
constexpr int siblings = 20;
constexpr int levels = 4;
constexpr auto pathOfLevels = "/Response/Item19/Item19/Item19/Item19";

QByteArray levelsFrom(int level) {
    if (level == levels)
        return "value";
    QByteArray text;
    for (int i = 0; i < siblings; ++i) {
        const QByteArray name = "Item" + QByteArray::number(i);
        const bool isLast = i == siblings - 1;
        text += '<' + name + '>' + (isLast ? levelsFrom(level + 1) : QByteArray("leaf")) + "</" +
                name + '>';
    }
    return text;
}

QByteArray levelsReply() {
    return "<Response>" + levelsFrom(0) + "</Response>";
}

void queryResponse(benchmark::State& state) {
    const XmlResponse response(levelsReply(), QString());
    const auto path = QString::fromLatin1(pathOfLevels);
    require(response.getText(path) == QLatin1String("value"), "query");
    for (auto _ : state)
        benchmark::DoNotOptimize(response.getText(path).constData());
}

void queryPugixml(benchmark::State& state) {
    pugi::xml_document document;
    const QByteArray reply = levelsReply();
    require(document.load_buffer(reply.constData(), static_cast<std::size_t>(reply.size())),
            "document");
    require(document.select_node(pathOfLevels).node().text().get() == std::string("value"),
            "query");
    for (auto _ : state)
        benchmark::DoNotOptimize(document.select_node(pathOfLevels).node().text().get());
}

// Literal addresses in their usual form, for which lessThan() is an order: std::sort may use it.
QStringList addresses(int count) {
    std::mt19937 random(1);
    const auto number = [&](unsigned int limit) { return static_cast<uint>(random() % limit); };
    QStringList list;
    for (int i = 0; i < count; ++i) {
        const QString v4 =
            QStringLiteral("10.%1.%2.%3").arg(number(4)).arg(number(256)).arg(number(256));
        const QString v6 =
            QStringLiteral("fe80::%1:%2").arg(number(0x10000), 0, 16).arg(number(0x10000), 0, 16);
        switch (i % 4) {
            case 0:
                list += v4;
                break;
            case 1:
                list += QStringLiteral("http://%1:%2").arg(v4).arg(8000 + number(1000));
                break;
            case 2:
                list += v6;
                break;
            default:
                list += QStringLiteral("[%1]:%2").arg(v6).arg(8000 + number(1000));
                break;
        }
    }
    return list;
}

constexpr int addressCount = 10'000;

void sortAddresses(benchmark::State& state) {
    const QStringList list = addresses(addressCount);
    for (auto _ : state) {
        QStringList sorted = list;
        CompareIpAddresses::sort(sorted);
        benchmark::DoNotOptimize(sorted.constData());
    }
}

void sortByLessThan(benchmark::State& state) {
    const QStringList list = addresses(addressCount);
    for (auto _ : state) {
        QStringList sorted = list;
        std::sort(sorted.begin(), sorted.end(), CompareIpAddresses::lessThan);
        benchmark::DoNotOptimize(sorted.constData());
    }
}

BENCHMARK(readReply)->Name("Reply5MB/XmlResponse")->Unit(benchmark::kMillisecond);
BENCHMARK(parseReply)->Name("Reply5MB/Peer_SetContent")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(children, , 20'000)->Name("GetAll/20000Children");
BENCHMARK_CAPTURE(children, , 10'000)->Name("GetAll/Peer_10000Children");
BENCHMARK(queryResponse)->Name("GetText/FourLevels");
BENCHMARK(queryPugixml)->Name("GetText/Peer_Pugixml");
BENCHMARK(sortAddresses)->Name("SortAddresses/Sort")->Unit(benchmark::kMillisecond);
BENCHMARK(sortByLessThan)->Name("SortAddresses/Peer_LessThan")->Unit(benchmark::kMillisecond);

}  // namespace
