#pragma once

#include <pylon/export.h>
#include <pylon/log/logmodule.h>

namespace pylon::plog {

/// Routes Qt's messages into the log: qDebug() as Debug, qInfo() as Info, qWarning() as Warn,
/// qCritical() and qFatal() as Error, all to sub-module defaultSubModule of @p module.
///
/// The category, unless it is the default one, becomes the item's context; the function its plain
/// function name; and "file:line function" its full one, as far as Qt knows them. After qFatal()
/// file devices are flushed before the process ends. A message that a log device causes goes to the
/// handler that was there before; all others reach the log's devices only.
///
/// Calling it again changes the module. Both functions are to be called while no other thread logs;
/// messages may come on any thread.
PYLON_EXPORT void installQtMessageHandler(Module module = PylonSDK);

/// Restores the handler that was there before installQtMessageHandler(); does nothing without one.
/// A handler that was installed later stays. Called by itself when the process exits.
PYLON_EXPORT void removeQtMessageHandler();

}  // namespace pylon::plog
