// XML replies: the input as a document, and as a list of pieces that make deep and crowded ones.

#include "fuzz.h"

#include <pylon/data/xmlresponse.h>

#include <algorithm>

using namespace pylon;

namespace {

const QByteArrayList pieces =
    QByteArray(
        "<a>|</a>|<b c='>' d=\"'\">|</b>|<e/>|<!--|-->|<![CDATA[|]]>|<?f|?>|<|>|'|\"|=|[|]|text|"
        "<a b='1'/|<!DOCTYPE a|<?xml version='1.0' encoding='UTF-8'?>|&#65;| xmlns:n='u'|<n:a>|"
        "</n:a>")
        .split('|');
constexpr int manyTimes = 60;

QByteArray fromPieces(const std::uint8_t* data, std::size_t size) {
    QByteArray document;
    for (std::size_t i = 0; i < std::min<std::size_t>(size, 64); ++i) {
        const QByteArray& piece = pieces[(data[i] & 0x7F) % pieces.size()];
        document += piece.repeated(data[i] & 0x80 ? manyTimes : 1);
    }
    return document;
}

void checkLimits(const XmlResponseNode& node, int depth, int attributes) {
    attributes += static_cast<int>(node.element.attributes().size());
    FUZZ_CHECK(depth <= XmlResponse::maxDepth && attributes <= XmlResponse::maxAttributes);
    for (const XmlResponseNode& child : node.children)
        checkLimits(child, depth + 1, attributes);
}

void query(const XmlResponse& response) {
    for (const char* path :
         {"", "/", "//", "/R/a", "/R/A[1]", "/R/a/a/b[0]/a", "/R/[a", "/R/a]["}) {
        const XmlResponseNode node = response.get(path);
        const QList<XmlResponseNode> all = response.getAll(path);
        FUZZ_CHECK(response.getText(path).isNull() != node.isValid());
        FUZZ_CHECK(!node.isValid() || response.getAll(node, "/").isEmpty());
        FUZZ_CHECK(std::ranges::all_of(all, &XmlResponseNode::isValid));
        response.getAttribute("c", path);
        response.getBool(path);
        response.getUInt(path);
    }
}

void read(const QByteArray& document) {
    const XmlResponse response(document, "");
    FUZZ_CHECK(response.isValid() == response.error().message.isEmpty());
    FUZZ_CHECK(response.isValid() == response.get("").isValid());
    checkLimits(response.get(""), 1, 0);
    query(response);
    response.xml();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    read(bytesOf(data, size));
    read(fromPieces(data, size));
    return 0;
}
