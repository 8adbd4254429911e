#pragma once

#include <pylon/export.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QMetaType>
#include <QtCore/QString>
#include <QtCore/QStringView>
#include <QtXml/QDomDocument>
#include <QtXml/QDomElement>

class QDebug;

namespace pylon {

/// An element of an XmlResponse with the elements in it; not valid where a query found none.
///
/// Thread-safety: a value type; copies on several threads may be read at once.
struct PYLON_EXPORT XmlResponseNode {
    /// A node that is not valid: no name, a null element, no children.
    XmlResponseNode() = default;
    /// A valid node with the local name of @p e, and no children: only parsing fills these in.
    XmlResponseNode(const QDomElement& e);

    /// All four fields; moving copies too, so what was moved from stays as it was.
    XmlResponseNode(const XmlResponseNode& other) = default;
    XmlResponseNode& operator=(const XmlResponseNode& other) = default;
    ~XmlResponseNode() = default;

    /// Whether there is an element: #valid.
    bool isValid() const { return valid; }

    /// Whether both stand for the same element of the same document, and have equal children.
    /// Neither #valid nor #name is compared.
    friend PYLON_EXPORT bool operator==(const XmlResponseNode& a, const XmlResponseNode& b);
    /// Name and number of children; "invalid" for a node that is not valid.
    friend PYLON_EXPORT QDebug operator<<(QDebug debug, const XmlResponseNode& node);

    /// Whether there is an element.
    bool valid = false;
    /// Local name of the element: without the prefix of its namespace.
    QString name;
    /// The element in the parsed document. Its neighbours and its parent may be reached through it
    /// only while the XmlResponse or a copy of it lives.
    QDomElement element;
    /// The elements directly in it, in document order; no texts or comments. Shared by copies until
    /// one of them is changed.
    QList<XmlResponseNode> children;
};

/// Where and why a document was refused.
struct PYLON_EXPORT XmlResponseError {
    int line = 0;     ///< From 1 up; 0 without an error.
    int column = 0;   ///< Characters of the line that had been read.
    QString message;  ///< In English for what the library refuses itself, else as Qt words it.

    friend bool operator==(const XmlResponseError&, const XmlResponseError&) = default;
    /// Line, column and message.
    friend PYLON_EXPORT QDebug operator<<(QDebug debug, const XmlResponseError& error);
};

/// The answer of a recording server, an XML document, read once and queried by path.
///
///     const pylon::XmlResponse reply(bytes, "/Response");
///     if (!reply.isValid())
///         return reply.error().message;
///     const QString model = reply.getText("/System/Model");
///     for (const pylon::XmlResponseNode& camera : reply.getAll("/Cameras/Camera"))
///         add(reply.getUInt(camera, "/Camera/Id"), reply.getText(camera, "/Camera/Name"));
///
/// Paths
/// -----
/// A path is a "/", the name of the element to start from (any text, it is not looked at), and a
/// name for each step down: "/Response/Cameras/Camera[2]/Name". Names are compared without regard
/// to case and to prefixes of namespaces. Of several elements of a name the first is meant, or with
/// a number in brackets the one of that index, from 0 up. A path of fewer than three parts, such as
/// "/Response" or "Name", stands for the starting element itself.
///
/// A prefix goes before every path that starts from the root, and before no other. It then brings
/// the leading parts along: with the prefix "/Response" the path "/Cameras/Camera" will do.
///
/// An empty name between two slashes, a name that consists of brackets, and an index that does not
/// fit 32 bits lead to no element.
///
/// What comes from the network
/// ---------------------------
/// Documents are read in UTF-8, UTF-16, UTF-32 and the encodings of one byte a character that Qt
/// knows on this platform. So that no document takes the stack, memory or time that its size does
/// not suggest, those are refused that go beyond #maxDepth or #maxAttributes or bring their own
/// entities in a document type declaration with an internal subset; entities elsewhere are not
/// fetched. Reading takes time and memory in proportion to the size of the document.
///
/// Thread-safety: const members may be called from several threads at once.
class PYLON_EXPORT XmlResponse {
public:
    /// Most levels of elements in a document, the root included.
    static constexpr int maxDepth = 256;
    /// Most attributes, declarations of namespaces included, that an element and all elements
    /// around it may have together.
    static constexpr int maxAttributes = 512;

    /// Reads @p data, white space around it aside; paths from the root get @p prefix.
    XmlResponse(const QByteArray& data, const QString& prefix);

    /// Whether the document was read without an error. In one that was not, no query finds
    /// anything.
    bool isValid() const { return !failed_; }
    /// The first error; an empty record for a valid document.
    const XmlResponseError& error() const { return error_; }

    /// The document as text, indented by two blanks a level; after an error what had been read, or
    /// empty.
    QString xml() const;

    /// Replaces the prefix of paths from the root.
    void setPrefix(const QString& prefix) { prefix_ = prefix; }

    /// @name One element
    /// A node that is not valid if there is none, or if @p from is not valid.
    /// @{

    /// The element at @p path from @p from.
    XmlResponseNode get(const XmlResponseNode& from, const QString& path) const;
    /// The element at @p path from the root.
    XmlResponseNode get(const QString& path) const { return get(root_, path); }
    /// @}

    /// @name All elements of a name
    /// All that the last name of the path fits, in document order; just the one if that name has an
    /// index. Empty if there is none. The path may be a name alone, for elements in the starting
    /// one.
    /// @{

    /// The elements at @p path from @p from.
    QList<XmlResponseNode> getAll(const XmlResponseNode& from, const QString& path) const;
    /// The elements at @p path from the root.
    QList<XmlResponseNode> getAll(const QString& path) const { return getAll(root_, path); }
    /// @}

    /// @name Text
    /// All text in the element, that of elements in it included. Null if there is no element, empty
    /// but not null if it has no text.
    /// @{

    /// The text at @p path from @p from.
    QString getText(const XmlResponseNode& from, const QString& path) const;
    /// The text at @p path from the root.
    QString getText(const QString& path) const { return getText(root_, path); }
    /// @}

    /// @name Attribute
    /// The value of the attribute whose local name is exactly @p attribute; the last one if there
    /// are several with different prefixes. Null if there is no element or no such attribute, empty
    /// but not null if it has no value.
    /// @{

    /// The attribute of the element at @p path from @p from.
    QString getAttribute(const QString& attribute, const XmlResponseNode& from,
                         const QString& path) const;
    /// The attribute of the element at @p path from the root.
    QString getAttribute(const QString& attribute, const QString& path) const {
        return getAttribute(attribute, root_, path);
    }
    /// @}

    /// @name Truth value
    /// True if the text is neither empty nor exactly "false"; so "False", "0" and "no" are true.
    /// False if there is no element.
    /// @{

    /// The truth value at @p path from @p from.
    bool getBool(const XmlResponseNode& from, const QString& path) const;
    /// The truth value at @p path from the root.
    bool getBool(const QString& path) const { return getBool(root_, path); }
    /// @}

    /// @name Number
    /// The text as a decimal number; 0 if there is no element, or its text is no number of 32 bits
    /// without a sign.
    /// @{

    /// The number at @p path from @p from.
    unsigned int getUInt(const XmlResponseNode& from, const QString& path) const;
    /// The number at @p path from the root.
    unsigned int getUInt(const QString& path) const { return getUInt(root_, path); }
    /// @}

    /// Validity, root and error.
    friend PYLON_EXPORT QDebug operator<<(QDebug debug, const XmlResponse& response);

private:
    const XmlResponseNode* find(const XmlResponseNode& from, QStringView path) const;

    QDomDocument document_;
    XmlResponseNode root_;
    QString prefix_;
    bool failed_ = false;
    XmlResponseError error_;
};

}  // namespace pylon

Q_DECLARE_TYPEINFO(pylon::XmlResponseNode, Q_RELOCATABLE_TYPE);
Q_DECLARE_METATYPE(pylon::XmlResponse)
Q_DECLARE_METATYPE(pylon::XmlResponseNode)
Q_DECLARE_METATYPE(pylon::XmlResponseError)
