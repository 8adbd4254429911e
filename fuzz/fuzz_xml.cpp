// XML replies: the input as a document, and as a list of pieces that make deep and crowded ones.

#include "fuzz.h"

#include <pylon/data/xmlresponse.h>

#include <algorithm>

using namespace pylon;

static void checkLimits(const XmlResponseNode& node, int depth, int attributes) {
    attributes += static_cast<int>(node.element.attributes().size());
    FUZZ_CHECK(depth <= XmlResponse::maxDepth && attributes <= XmlResponse::maxAttributes);
    for (const XmlResponseNode& child : node.children)
        checkLimits(child, depth + 1, attributes);
}

static void read(const QByteArray& document) {
    const XmlResponse response(document, "");
    FUZZ_CHECK(response.isValid() == response.error().message.isEmpty());
    FUZZ_CHECK(response.isValid() == response.get("").isValid());
    checkLimits(response.get(""), 1, 0);
    response.xml();
    for (const QString path : {"", "/", "//", "/R/A[1]", "/R/a/a/b[0]/a", "/R/[a", "/a]["}) {
        const XmlResponseNode node = response.get(path);
        FUZZ_CHECK(response.getText(path).isNull() != node.isValid());
        FUZZ_CHECK(!node.isValid() || response.getAll(node, "/").isEmpty());
        FUZZ_CHECK(std::ranges::all_of(response.getAll(path), &XmlResponseNode::isValid));
        response.getAttribute("c", path);
        response.getUInt(path);
    }
}

void fuzz(const QByteArray& input) {
    static const QByteArrayList pieces =
        QByteArray(
            "<a>|</a>|<b c='>' d=\"'\">|</b>|<e/>|<!--|-->|<![CDATA[|]]>|<?f|?>|<|>|'|\"|=|[|]|"
            "text|<a b='1'/|<!DOCTYPE a|<?xml version='1.0'?>|&#65;| xmlns:n='u'|<n:a>|</n:a>")
            .split('|');
    read(input);
    QByteArray document;
    for (const char byte : input.left(64))
        document += pieces[(byte & 0x7F) % pieces.size()].repeated(byte & 0x80 ? 60 : 1);
    read(document);
}
