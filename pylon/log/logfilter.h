#pragma once

#include <pylon/export.h>
#include <pylon/log/logfilteritem.h>
#include <pylon/log/logmodule.h>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QSharedPointer>
#include <QtCore/QString>

namespace pylon::plog {

/// Parses filter texts and checks them against the registered modules.
///
/// A filter text is a sequence of terms separated by commas, blanks or a tab. A term is a module
/// name, or a module name followed by a braced list of its sub-modules separated by commas or
/// blanks: "Network{Request, Login} Playback,Config". Names are case-sensitive. A module without
/// braces stands for all its named sub-modules, which leaves out the lines of that module that name
/// no sub-module.
///
/// Unknown names make a text invalid and are listed in the optional error text, separated by ", ":
/// an unknown module by its name, an unknown sub-module as "Module{Name}". The error text is
/// appended to, never cleared.
///
/// A name of more than maxNameBytes bytes of UTF-8 is a fatal error that ends the process; check
/// texts that come from outside with hasOverlongName() first.
///
/// Thread-safety: no state of its own; concurrent calls are safe while the module table does not
/// change.
class PYLON_EXPORT LogFilter {
public:
    /// Longest module or sub-module name, in bytes of UTF-8.
    static constexpr qsizetype maxNameBytes = 255;

    /// @param modules the registered modules; not copied, must outlive the filter.
    explicit LogFilter(const QMap<Module, QSharedPointer<LogModule>>& modules);

    /// The terms of a filter text in order, resolved; invalid ones included.
    /// @param[in,out] error receives the unknown names; may be null.
    QList<LogFilterItem> parseFilterString(const QString& filter, QString* error) const;

    /// Resolves one item. The known names of an invalid item are resolved as well; an unknown
    /// module leaves the item's numbers as they were.
    bool isValid(const LogFilterItem& item, QString* error) const;
    /// Resolves every item, also after an invalid one. No items are valid.
    bool isValid(const QList<LogFilterItem>& items, QString* error) const;
    /// Whether a filter text names known modules and sub-modules only.
    bool isValid(const QString& filter, QString* error) const;

    /// Whether parsing @p filter would end the process because of a name over maxNameBytes.
    static bool hasOverlongName(const QString& filter);

private:
    const QMap<Module, QSharedPointer<LogModule>>* modules_;
};

}  // namespace pylon::plog
