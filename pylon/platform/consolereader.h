#pragma once

#include <pylon/export.h>
#include <QtCore/QThread>

namespace pylon {

/// The interface of a reader of keys from the console, for code that connects to one.
///
/// The thread ends as soon as it is started and no key is ever reported. A class of the
/// application that reads keys derives from this one and replaces run(). Thread-safety: as QThread;
/// the signal may be emitted on the reader's thread.
class PYLON_EXPORT ConsoleReader : public QThread {
    Q_OBJECT

public:
    ConsoleReader();
    ~ConsoleReader() override;

signals:
    /// A key was pressed. Never emitted by this class itself.
    void KeyPressed(char key);

protected:
    /// Returns at once.
    void run() override;
};

}  // namespace pylon
