#include <pylon/data/xmlresponse.h>

#include <pylon/data/internal/xmllimits.h>

#include <QtCore/QDebug>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringConverter>
#include <QtCore/QStringTokenizer>
#include <QtCore/QVarLengthArray>

#include <algorithm>
#include <optional>

namespace pylon {

namespace {

// One step of a path.
struct Component {
    QString name;
    unsigned int index = 0;
    qsizetype end = 0;  // of the index in the text; -1 without one
};

bool hasBrackets(QStringView part) {
    return part.contains(u'[') || part.contains(u']');
}

// Nothing for a part without a name, or with an index of more than 32 bits.
std::optional<Component> parseComponent(const QString& part) {
    static const QRegularExpression pattern(QStringLiteral("([^\\[\\]]+)(?:\\[([0-9]+)\\])?"));
    const QRegularExpressionMatch match = pattern.match(part);
    if (!match.hasMatch())
        return std::nullopt;
    Component component{match.captured(1), 0, match.capturedEnd(2)};
    bool fits = true;
    if (match.hasCaptured(2))
        component.index = match.capturedView(2).toUInt(&fits);
    return fits ? std::optional(component) : std::nullopt;
}

char16_t asciiLower(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + (u'a' - u'A')) : c;
}

// Whether the lower-case forms are equal. These are made only for names beyond ASCII: lower case
// goes by single characters, and ASCII stays ASCII, so the first difference within it decides.
bool haveSameLowerCase(QStringView a, QStringView b) {
    const qsizetype common = std::min(a.size(), b.size());
    for (qsizetype i = 0; i < common; ++i) {
        const char16_t x = a[i].unicode();
        const char16_t y = b[i].unicode();
        if (x > 0x7F || y > 0x7F)
            return a.toString().toLower() == b.toString().toLower();
        if (asciiLower(x) != asciiLower(y))
            return false;
    }
    return a.size() == b.size();
}

const XmlResponseNode* childAt(const XmlResponseNode& parent, QStringView name,
                               unsigned int index) {
    for (const XmlResponseNode& child : parent.children) {
        if (haveSameLowerCase(child.name, name) && index-- == 0)
            return &child;
    }
    return nullptr;
}

const XmlResponseNode* child(const XmlResponseNode& parent, QStringView part) {
    // A plain name is what the pattern would find in it; this way it costs no allocation.
    if (!part.isEmpty() && !hasBrackets(part))
        return childAt(parent, part, 0);
    const std::optional<Component> component = parseComponent(part.toString());
    return component ? childAt(parent, component->name, component->index) : nullptr;
}

QList<XmlResponseNode> childrenNamed(const XmlResponseNode& parent, QStringView name) {
    QList<XmlResponseNode> found;
    for (const XmlResponseNode& candidate : parent.children) {
        if (haveSameLowerCase(candidate.name, name))
            found.append(candidate);
    }
    return found;
}

void fillChildren(XmlResponseNode& node) {
    for (QDomElement element = node.element.firstChildElement(); !element.isNull();
         element = element.nextSiblingElement()) {
        node.children.emplace_back(element);
        fillChildren(node.children.last());
    }
}

// Nothing if Qt takes the document, in whose bytes or characters text is.
template <typename Text>
std::optional<XmlResponseError> setContent(QDomDocument& document, const Text& text) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    const QDomDocument::ParseResult result =
        document.setContent(text, QDomDocument::ParseOption::UseNamespaceProcessing);
    if (result)
        return std::nullopt;
    return XmlResponseError{static_cast<int>(result.errorLine),
                            static_cast<int>(result.errorColumn), result.errorMessage};
#else
    XmlResponseError error;
    if (document.setContent(text, true, &error.message, &error.line, &error.column))
        return std::nullopt;
    return error;
#endif
}

XmlResponseError refusal(QByteArrayView text, const xmllimits::Excess& excess) {
    const QByteArrayView before = text.first(excess.offset);
    const QByteArrayView line = before.sliced(before.lastIndexOf('\n') + 1);
    return {static_cast<int>(before.count('\n')) + 1,
            static_cast<int>(QString::fromUtf8(line).size()), QLatin1String(excess.reason)};
}

// Nothing if the document was read.
std::optional<XmlResponseError> read(QDomDocument& document, const QByteArray& data) {
    const auto encoding = QStringConverter::encodingForData(data, u'<');
    if (!encoding || *encoding == QStringConverter::Utf8) {
        if (const auto foreign = xmllimits::findForeignEncoding(data))
            return refusal(data, *foreign);
        const auto excess = xmllimits::findExcess(data);
        return excess ? refusal(data, *excess) : setContent(document, data);
    }
    // Several bytes a character, as the first ones tell.
    const QString text = QStringDecoder(*encoding).decode(data);
    const QByteArray utf8 = text.toUtf8();
    const auto excess = xmllimits::findExcess(utf8);
    return excess ? refusal(utf8, *excess) : setContent(document, text);
}

}  // namespace

XmlResponseNode::XmlResponseNode(const QDomElement& e)
    : valid(true), name(e.localName()), element(e) {}

bool operator==(const XmlResponseNode& a, const XmlResponseNode& b) {
    return a.element == b.element && a.children == b.children;
}

XmlResponse::XmlResponse(const QByteArray& data, const QString& prefix) : prefix_(prefix) {
    const std::optional<XmlResponseError> error = read(document_, data.trimmed());
    if (error) {
        failed_ = true;
        error_ = *error;
        return;
    }
    const QDomElement element = document_.documentElement();
    if (!element.isNull()) {
        root_ = XmlResponseNode(element);
        fillChildren(root_);
    }
}

QString XmlResponse::xml() const {
    return document_.toString(2);
}

XmlResponseNode XmlResponse::get(const XmlResponseNode& from, const QString& path) const {
    const XmlResponseNode* const node = find(from, path);
    return node ? *node : XmlResponseNode();
}

QList<XmlResponseNode> XmlResponse::getAll(const XmlResponseNode& from, const QString& path) const {
    const qsizetype slash = path.lastIndexOf(u'/');
    const QStringView parentPath = QStringView(path).first(std::max<qsizetype>(slash, 0));
    const QStringView name = QStringView(path).sliced(slash + 1);
    const XmlResponseNode* const parent = find(from, parentPath);
    if (!parent)
        return {};
    if (!name.isEmpty() && !hasBrackets(name))
        return childrenNamed(*parent, name);

    // With an index put behind it, the name either takes that as its own, or has one or cannot have
    // one: then it stands for the same child whatever the index is.
    const QString indexed = name.toString() + QLatin1String("[0]");
    const std::optional<Component> component = parseComponent(indexed);
    if (!component)
        return {};
    if (component->end == indexed.size() - 1)
        return childrenNamed(*parent, component->name);
    const XmlResponseNode* const only = childAt(*parent, component->name, component->index);
    return only ? QList<XmlResponseNode>{*only} : QList<XmlResponseNode>();
}

QString XmlResponse::getText(const XmlResponseNode& from, const QString& path) const {
    const XmlResponseNode* const node = find(from, path);
    return node ? node->element.text() : QString();
}

QString XmlResponse::getAttribute(const QString& attribute, const XmlResponseNode& from,
                                  const QString& path) const {
    const XmlResponseNode* const node = find(from, path);
    if (!node || !node->element.hasAttribute(attribute))
        return QString();
    const QString value = node->element.attribute(attribute);
    return value.isNull() ? QLatin1String("") : value;
}

bool XmlResponse::getBool(const XmlResponseNode& from, const QString& path) const {
    const QString text = getText(from, path);
    return !text.isEmpty() && text != QLatin1String("false");
}

unsigned int XmlResponse::getUInt(const XmlResponseNode& from, const QString& path) const {
    return getText(from, path).toUInt();
}

// The node lives in the tree of from.
const XmlResponseNode* XmlResponse::find(const XmlResponseNode& from, QStringView path) const {
    if (!from.isValid())
        return nullptr;
    constexpr qsizetype usualLength = 256;
    QVarLengthArray<QChar, usualLength> whole;
    if (!prefix_.isEmpty() && from == root_)
        whole.append(prefix_.cbegin(), prefix_.size());
    whole.append(path.cbegin(), path.size());

    const XmlResponseNode* node = &from;
    // The first parts say where to start, which the caller has done.
    int startingParts = 2;
    for (const QStringView part : qTokenize(QStringView(whole), u'/')) {
        if (startingParts > 0) {
            --startingParts;
            continue;
        }
        node = child(*node, part);
        if (!node)
            return nullptr;
    }
    return node;
}

QDebug operator<<(QDebug debug, const XmlResponseNode& node) {
    const QDebugStateSaver saver(debug);
    debug.nospace() << "XmlResponseNode(";
    if (!node.isValid())
        return debug << "invalid)";
    return debug << node.name << ", " << node.children.size() << " children)";
}

QDebug operator<<(QDebug debug, const XmlResponseError& error) {
    const QDebugStateSaver saver(debug);
    return debug.nospace().noquote() << "XmlResponseError(" << error.line << ':' << error.column
                                     << ' ' << error.message << ')';
}

QDebug operator<<(QDebug debug, const XmlResponse& response) {
    const QDebugStateSaver saver(debug);
    debug.nospace() << "XmlResponse(";
    if (!response.isValid())
        return debug << response.error_ << ')';
    return debug << response.root_ << ", prefix " << response.prefix_ << ')';
}

}  // namespace pylon
