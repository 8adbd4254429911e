#pragma once

#include <pylon/export.h>
#include <pylon/platform/systeminfo.h>
#include <QtCore/QObject>

#include <vector>

namespace pylon {

class QuerySystemInfoPrivate;

/// Finds out about the Windows machine the program runs on, for support reports and the like.
///
///     pylon::QuerySystemInfo query;
///     QObject::connect(&query, &pylon::QuerySystemInfo::loaded, [&query] {
///         qInfo() << query.systemInfo().osName << query.network().size() << "network adapters";
///     });
///     query.load();
///
/// Runs the programs `systeminfo` and `ipconfig` as the search path finds them, and reads their
/// English output; see systeminfo.h. On a system without them, and where they fail, the results are
/// empty.
///
/// The object may be destroyed at any time but while it emits loaded(): programs that still run are
/// ended. Thread-safety: none; the object works in the thread that owns it, which needs an event
/// loop, and is not to be moved to another while it loads.
class PYLON_EXPORT QuerySystemInfo : public QObject {
    Q_OBJECT

public:
    QuerySystemInfo();
    ~QuerySystemInfo() override;

    /// Starts both programs and returns at once.
    ///
    /// Further calls query again, also while an earlier query is under way. Processors and adapters
    /// are then added to those already known; clear them for a fresh start. What is missing is said
    /// by a warning on Qt's channel.
    void load();

    /// Whether both programs have answered or failed at least once.
    bool isLoaded() const;

    /// The machine, as far as known. The reference is valid for the life of the object.
    SystemInfo& systemInfo();
    /// The network adapters, as far as known. The reference is valid for the life of the object.
    std::vector<NetworkInterface>& network();

    /// Whether this is one of the machines that carry the release file "/etc/marlow-release".
    static bool isMarlow();

signals:
    /// Both programs have answered or failed; within load() already where they cannot be started.
    /// After a second load() emitted for each of them, and for one that crashes twice: for the
    /// crash and for the end.
    void loaded();

private:
    QuerySystemInfoPrivate* d_;
};

}  // namespace pylon
