// Leaves a trace in the process that loads it.

#include <QtCore/QByteArray>

[[maybe_unused]] static const bool loaded = qputenv("PYLON_TEST_PLUGIN", "loaded");
