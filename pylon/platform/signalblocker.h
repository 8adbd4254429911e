#pragma once

#include <QtCore/QObject>

namespace pylon {

/// Blocks an object's signals for as long as it lives, then puts back what was before; blockers of
/// one object may nest.
///
/// The object is not owned and must outlive the blocker; a null one is ignored. Thread-safety: as
/// the object's own blockSignals().
class SignalBlocker {
public:
    /// Blocks the signals of @p object.
    explicit SignalBlocker(QObject* object)
        : object_(object), previouslyBlocked_(object && object->signalsBlocked()) {
        if (object_)
            object_->blockSignals(true);
    }
    ~SignalBlocker() {
        if (object_)
            object_->blockSignals(previouslyBlocked_);
    }
    Q_DISABLE_COPY_MOVE(SignalBlocker)

private:
    QObject* object_;
    bool previouslyBlocked_;
};

}  // namespace pylon
