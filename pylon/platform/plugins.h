#pragma once

#include <pylon/export.h>
#include <QtCore/QList>
#include <QtCore/QString>

/// @file
/// Loading of plug-in libraries that lie beside the program. A library stays loaded until the
/// program ends; one that cannot be loaded is said by a warning on Qt's channel, with its path.
///
/// The application object must exist. Both functions are safe on any thread; the plug-in's own
/// initialisation runs on the calling one.

namespace pylon {

/// Loads the library "<name>.dll" beside the program. It is called so on every platform.
PYLON_EXPORT void loadPlugin(const QString& name);

/// Loads modules of Qt in the order given: "Qt6<name>.dll" beside the program for each name, for
/// example "Multimedia".
PYLON_EXPORT void loadQtPlugins(const QList<QString>& names);

}  // namespace pylon
