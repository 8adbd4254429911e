#pragma once

#include <pylon/export.h>
#include <pylon/log/arg.h>
#include <pylon/log/loglevel.h>
#include <pylon/log/logmodule.h>
#include <QtCore/QByteArray>
#include <QtCore/QList>

namespace pylon::plog {

/// Rewrites the tag of each item that a client logs, for instance to add what is known only then.
class PYLON_EXPORT LogTagHook {
public:
    virtual ~LogTagHook();

    /// Called with a copy of the client's tag on the thread that logs, possibly on several threads
    /// at once; hooks of one client see each other's changes, in the order they were added.
    virtual void rewriteTag(QByteArray& tag) = 0;
};

/// What every LogClient does, whatever its module.
///
/// Thread-safety: any number of threads may log through one client at once. Its tag and hooks are
/// to be changed while no other thread logs through it.
class PYLON_EXPORT LogClientBase {
public:
    /// Whether the log manager has the client's module enabled.
    bool isEnabled() const { return (*enabledModules_ & module_) != 0; }
    /// Whether the module and one of these sub-modules are enabled, so that a line of an enabled
    /// level would reach the log devices. Spares the work of preparing costly values.
    bool isEnabled(unsigned int submods) const {
        return isEnabled() && (*enabledSubmodules_ & submods) != 0;
    }

    /// Number of the module it logs for.
    Module module() const { return module_; }
    /// Display name of the module, "Unknown" for a module that is not registered.
    const char* name() const { return name_; }

    /// Short text that marks this client's lines in a column of its own; empty for none.
    void setTag(const QByteArray& tag) { tag_ = tag; }
    /// The tag that hooks start from.
    QByteArray tag() const { return tag_; }

    /// Adds a hook; not owned, to be removed before it is destroyed.
    void addHook(LogTagHook* hook);
    /// Removes a hook; one that was never added changes nothing.
    void removeHook(LogTagHook* hook);

    /// Formats a message and hands it to the log manager; best called by the macros of logmacros.h,
    /// which test first whether the line is wanted.
    ///
    /// @param function plain name of the calling function; static text.
    /// @param prettyFunction its full signature; static text.
    /// @param object the calling object, or null.
    /// @param first a sub-module number, or the format, or nothing.
    /// @param second the format if @p first is a sub-module number.
    /// @param sentinel never read.
    /// @param ... the values of the format in @p first; or, if @p second is the format, that format
    ///        once more and then its values.
    ///
    /// Formats are those of C99 printf on every platform; a message may be of any length. A format
    /// that cannot be carried out is reported on standard error as "logclient error:" with the
    /// result, and the item has an empty message.
    void log(LogLevel level, const char* function, const char* prettyFunction, const void* object,
             Arg first, Arg second, const char* sentinel, ...);

protected:
    /// Creates the log manager if there is none yet.
    explicit LogClientBase(Module module);
    ~LogClientBase() = default;

    /// The manager's mask of enabled modules as it is now.
    unsigned int enabledModules() const { return *enabledModules_; }

private:
    QByteArray currentTag() const;

    QList<LogTagHook*> hooks_;
    QByteArray tag_;
    Module module_;
    const char* name_ = "Unknown";
    const unsigned int* enabledModules_;
    const unsigned int* enabledSubmodules_;
};

/// The log of one module, for the source files that belong to it; each such file defines a static
/// one, for example `static pylon::plog::LogClient<pylon::plog::Playback> client;`.
/// @tparam N number of the module.
template <unsigned int N>
class LogClient : public LogClientBase {
public:
    LogClient() : LogClientBase(static_cast<Module>(N)) {}

    using LogClientBase::isEnabled;
    /// As LogClientBase::isEnabled(), with the module known to the compiler.
    bool isEnabled() const { return (enabledModules() & N) != 0; }
};

/// The client of module PylonSDK, for code that has none of its own.
extern PYLON_EXPORT LogClient<1> log_client_;

}  // namespace pylon::plog
