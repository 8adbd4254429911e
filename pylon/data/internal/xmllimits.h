#pragma once

#include <QtCore/QByteArrayView>

#include <optional>

/// @file
/// A look at a document before Qt's parser sees it.
///
/// The parser expands one entity at a time to at most 4,096 characters, but any number of them; it
/// compares each attribute of an element with all others of it, looks for a namespace prefix among
/// all declarations around an element, and takes time that grows with the square of the depth.
/// Writing a document back takes about 2 KB of stack a level. All this stays cheap within the
/// limits of XmlResponse.

namespace pylon::xmllimits {

struct Excess {
    const char* reason;
    qsizetype offset;  ///< Of the markup that goes too far, in bytes.
};

/// Where @p document, eight bits a unit, names an encoding in which ASCII bytes may be something
/// else than ASCII characters, so that findExcess() could not read it.
std::optional<Excess> findForeignEncoding(QByteArrayView document);

/// Where and how @p document first goes beyond what XmlResponse reads. One that is not well-formed
/// is looked at up to its first error or farther.
std::optional<Excess> findExcess(QByteArrayView document);

}  // namespace pylon::xmllimits
