#include <pylon/data/internal/xmllimits.h>

#include <pylon/data/xmlresponse.h>

#include <QtCore/QRegularExpression>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>

namespace pylon::xmllimits {

namespace {

constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");
constexpr qsizetype longestDeclaration = 256;

// Encodings of one byte a character, and UTF-8: a byte below 128 always is that character.
bool isPlainDeclaration(QByteArrayView document) {
    static const QRegularExpression plain(
        QStringLiteral("^<\\?xml\\s+version\\s*=\\s*([\"'])[\\w.]*\\1"
                       "(\\s+encoding\\s*=\\s*([\"'])"
                       "(utf-?8|us-ascii|ascii|latin1|iso-8859-\\d+|windows-125\\d|koi8-[ru])\\3)?"
                       "(\\s+standalone\\s*=\\s*([\"'])(yes|no)\\6)?\\s*\\?>"),
        QRegularExpression::CaseInsensitiveOption);
    const QByteArrayView start = document.first(std::min(document.size(), longestDeclaration));
    return plain.match(QString::fromLatin1(start)).hasMatch();
}

bool hasDeclaration(QByteArrayView document) {
    constexpr QByteArrayView start("<?xml");
    return document.startsWith(start) && document.size() > start.size() &&
           std::isspace(static_cast<unsigned char>(document[start.size()]));
}

struct Tag {
    qsizetype end;  // behind it
    int attributes = 0;
    bool empty = false;
    bool hasSubset = false;  // of a document type declaration
};

// From the "<" at @p begin to a ">" outside quotes, to "[" there, or to the end.
Tag readTag(QByteArrayView document, qsizetype begin) {
    Tag tag{document.size()};
    for (qsizetype i = begin + 1; i < document.size(); ++i) {
        switch (const char c = document[i]) {
            case '"':
            case '\'':
                i = document.indexOf(c, i + 1);
                if (i < 0)
                    return tag;
                break;
            case '=':
                ++tag.attributes;
                break;
            case '[':
            case '>':
                tag.end = i + 1;
                tag.empty = document[i - 1] == '/';
                tag.hasSubset = c == '[';
                return tag;
            default:
                break;
        }
    }
    return tag;
}

class MarkupWalk {
public:
    explicit MarkupWalk(QByteArrayView document) : document_(document) {}

    std::optional<Excess> run() {
        while ((at_ = document_.indexOf('<', at_)) >= 0) {
            if (const char* const reason = step())
                return Excess{reason, at_};
        }
        return std::nullopt;
    }

private:
    // Moves behind the markup that begins here, unless that goes too far.
    const char* step() {
        const QByteArrayView markup = document_.sliced(at_);
        if (markup.startsWith("</")) {
            if (depth_ > 0)
                --depth_;
            return skip(">", 2);
        }
        if (markup.startsWith("<?"))
            return skip("?>", 2);
        if (markup.startsWith("<!--"))
            return skip("-->", 4);
        if (markup.startsWith("<![CDATA["))
            return skip("]]>", 9);
        const Tag tag = readTag(document_, at_);
        if (markup.startsWith("<!")) {
            if (tag.hasSubset)
                return "Document type declaration with an internal subset.";
        } else if (const char* const reason = enter(tag)) {
            return reason;
        }
        at_ = tag.end;
        return nullptr;
    }

    const char* skip(QByteArrayView end, qsizetype from) {
        const qsizetype found = document_.indexOf(end, at_ + from);
        at_ = found < 0 ? document_.size() : found + end.size();
        return nullptr;
    }

    const char* enter(const Tag& tag) {
        if (depth_ == XmlResponse::maxDepth)
            return "Elements nested too deeply.";
        const int attributes = attributes_[depth_] + tag.attributes;
        if (attributes > XmlResponse::maxAttributes)
            return "Too many attributes on an element and those around it.";
        if (!tag.empty)
            attributes_[++depth_] = attributes;
        return nullptr;
    }

    QByteArrayView document_;
    qsizetype at_ = 0;
    std::size_t depth_ = 0;  // of open elements
    // By depth: attributes of the open element and those around it.
    std::array<int, XmlResponse::maxDepth + 1> attributes_{};
};

}  // namespace

std::optional<Excess> findForeignEncoding(QByteArrayView document) {
    const qsizetype begin = document.startsWith(byteOrderMark) ? byteOrderMark.size() : 0;
    const QByteArrayView text = document.sliced(begin);
    if (!hasDeclaration(text) || isPlainDeclaration(text))
        return std::nullopt;
    return Excess{"XML declaration or encoding not supported.", begin};
}

std::optional<Excess> findExcess(QByteArrayView document) {
    return MarkupWalk(document).run();
}

}  // namespace pylon::xmllimits
