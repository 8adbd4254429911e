#pragma once

#include <pylon/export.h>
#include <QtCore/QObject>

/// @file
/// Deletion of objects by the event loop, and a way to have it done soon.

namespace pylon {

/// Delivers what has been posted to a thread, deletions included, when asked to.
///
/// The process has one handler; it belongs to the thread that asks first and does its work in that
/// thread's event loop. It is never destroyed.
class PYLON_EXPORT DeferredDeletionHandler : public QObject {
    Q_OBJECT

public:
    /// As requestProcessDeleteLaterEvents().
    static void queueRequest();

private slots:
    void processDeleteLaterEvents();

private:
    DeferredDeletionHandler() = default;
};

/// Has the event loop of the object's thread delete it; see QObject::deleteLater().
/// @param object not null. Safe on any thread.
PYLON_EXPORT void deleteLater(QObject* object);

/// As deleteLater(), and leaves a Trace line with the object's address and name in the log, module
/// Logic.
/// @param object not null. Safe on any thread that may read its name.
PYLON_EXPORT void deleteLaterSafely(QObject* object);

/// Has the handler deliver, as soon as its event loop runs, all events posted to objects of its
/// thread. Each call counts.
///
/// By Qt's rules an object is deleted once control is back in the event loop, or in an outer one,
/// of where its deletion was asked for. Safe on any thread; let the thread whose objects matter ask
/// first.
PYLON_EXPORT void requestProcessDeleteLaterEvents();

}  // namespace pylon
