#include <pylon/log/logmacros.h>
#include <pylon/platform/deferreddeletion.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

namespace pylon {

static plog::LogClient<plog::Logic> client;

void DeferredDeletionHandler::queueRequest() {
    static auto* const handler = new DeferredDeletionHandler;
    QTimer::singleShot(0, handler, SLOT(processDeleteLaterEvents()));
}

void DeferredDeletionHandler::processDeleteLaterEvents() {
    QCoreApplication::sendPostedEvents(nullptr, 0);
}

void deleteLater(QObject* object) {
    object->deleteLater();
}

void deleteLaterSafely(QObject* object) {
    if (plog::LG_trace_enabled && client.isEnabled()) {
        constexpr const char* source = "pylon::deleteLaterSafely";
        plog::internal::submit(client, plog::Trace, {source, source, nullptr}, "Object: %p [%s]",
                               static_cast<const void*>(object),
                               object->objectName().toLocal8Bit().constData());
    }
    object->deleteLater();
}

void requestProcessDeleteLaterEvents() {
    DeferredDeletionHandler::queueRequest();
}

}  // namespace pylon
