#pragma once

#include <pylon/export.h>
#include <QtCore/QProcess>

namespace pylon {

/// A QProcess under a name of its own, for code that starts a program and waits for it.
///
/// Known to the meta-type system: the class can be found as "pylon::SynchronousProcess*" and made
/// through its meta-object. Adds no behaviour. Thread-safety: as QProcess, one thread.
class PYLON_EXPORT SynchronousProcess : public QProcess {
    Q_OBJECT

public:
    /// A process that is not started; @p parent may be null.
    Q_INVOKABLE explicit SynchronousProcess(QObject* parent = nullptr);
    ~SynchronousProcess() override;
};

}  // namespace pylon
