#pragma once

#include <pylon/export.h>
#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QString>

class QDebug;

namespace pylon::plog {

/// Functional area of the SDK or of an application on it. Each module is one bit; modules combine
/// into masks. The value 0x10000 belongs to no module.
enum Module : unsigned int {
    PylonSDK = 0x1,
    Network = 0x2,
    Config = 0x4,
    Logic = 0x8,
    Playback = 0x10,
    Export = 0x20,
    Audio = 0x40,
    Test = 0x80,  ///< Its lines carry an arrow that makes them stand out.
    ActiveX = 0x100,
    TestHelper = 0x200,
    DummySrv = 0x400,
    Setup = 0x800,
    Upgrade = 0x1000,
    Layout = 0x2000,
    Ptzf = 0x4000,
    ConReq = 0x8000,
    Qml = 0x20000,
    Gui = 0x40000,
    MainUI = 0x80000,
};

/// The sub-module of log calls that name none.
inline constexpr unsigned int defaultSubModule = 256;
/// Mask of every sub-module that a module can have. Bits 0 to 7 are none and survive every filter.
inline constexpr unsigned int allSubModules = 0xFFFFFF00;

/// One module with its display name and its named sub-modules.
///
/// Sub-module numbers are single bits from 256 up, unique within their module only; bits 0 to 7 of
/// a sub-module mask are never sub-modules. The registered modules are made by the log manager; see
/// LogManager::logModule(). Thread-safety: a value type; concurrent reads are safe.
class PYLON_EXPORT LogModule {
public:
    /// @param name display name; static text that is kept by address and never freed.
    LogModule(Module module, const char* name);

    /// Adds a sub-module, or renames the one with this number.
    void addSubModule(unsigned int id, const QString& name);

    /// Number of the module, a single bit.
    Module module() const { return module_; }
    /// Display name.
    QString name() const { return name_; }
    /// Display name, the static text it was made from.
    const char* name_cstr() const { return name_cstr_; }

    /// Number of the sub-module with exactly this name (case-sensitive), or 0.
    unsigned int subModule(const QString& name) const;
    /// Name of a sub-module, empty for a number that has none.
    QString subModuleName(unsigned int id) const;

    /// All names, in no particular order.
    QList<QString> subModuleNames() const;
    /// All numbers, in no particular order.
    QList<unsigned int> subModules() const;

    /// Writes `LogModule(Network, 0x2)`.
    friend PYLON_EXPORT QDebug operator<<(QDebug debug, const LogModule& module);

private:
    Module module_;
    const char* name_cstr_;
    QString name_;
    QHash<unsigned int, QString> subModules_;
};

}  // namespace pylon::plog
