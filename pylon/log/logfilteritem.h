#pragma once

#include <pylon/export.h>
#include <pylon/log/logmodule.h>
#include <QtCore/QList>
#include <QtCore/QString>

class QDebug;

namespace pylon::plog {

/// One term of a filter text: a module name and the names of some of its sub-modules.
///
/// An item starts as text alone; LogFilter resolves it to numbers. Resolving is done on const
/// items: it adds what the text means and does not change what it says. Thread-safety: a value
/// type.
class PYLON_EXPORT LogFilterItem {
public:
    /// An unresolved item. No sub-modules stand for all named sub-modules of the module.
    LogFilterItem(const QString& module, const QList<QString>& subModules)
        : moduleStr_(module), subModulesStr_(subModules) {}

    /// The module name as written.
    const QString& moduleStr() const { return moduleStr_; }
    /// The sub-module names as written; once resolved, all names of the module where none was
    /// written.
    const QList<QString>& subModulesStr() const { return subModulesStr_; }

    /// Whether every name was known; false until resolved.
    bool isValid() const { return valid_; }
    /// The module's bit, 0 until resolved.
    Module module() const { return module_; }
    /// The bits of the known sub-modules, 0 until resolved.
    unsigned int subModules() const { return subModules_; }

    /// Writes `LogFilterItem(Network{Login, Stream})`, with "not valid" behind it unless isValid().
    friend PYLON_EXPORT QDebug operator<<(QDebug debug, const LogFilterItem& item);

private:
    friend class LogFilter;

    void setValid(bool valid) const { valid_ = valid; }
    void setModule(Module module) const { module_ = module; }
    void setSubmodules(unsigned int subModules) const { subModules_ = subModules; }
    void setSubmodulesStrList(const QList<QString>& names) const { subModulesStr_ = names; }

    QString moduleStr_;
    mutable QList<QString> subModulesStr_;
    mutable bool valid_ = false;
    mutable Module module_ = Module{};
    mutable unsigned int subModules_ = 0;
};

}  // namespace pylon::plog
