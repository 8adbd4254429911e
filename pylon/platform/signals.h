#pragma once

#include <pylon/export.h>
#include <QtCore/QString>

#include <vector>

/// @file
/// The signals by which a process is ended, for a host that says good-bye before it goes. All
/// functions are safe on any thread; see each for whether a signal handler may call it.
///
/// An id is the signal's number on Windows. Elsewhere 21 and 22 are the numbers of other signals:
/// install handlers for signalNumber() of an id, not for the id.

namespace pylon {

/// The ids of the signals to install handlers for: 21, 2, 4, 8, 11, 15, 22.
PYLON_EXPORT std::vector<int> signalIds();

/// Always an empty text, with a warning of Qt that names the signal; see signalName().
PYLON_EXPORT QString signalToString(int id);

/// Name of a signal, for example "Segmentation violation (ANSI)" for 11; "Unknow signal" for any id
/// that is not one of signalIds(). Static text; may be called in a signal handler.
PYLON_EXPORT const char* signalName(int id);

/// The number that this platform raises for an id: 6 for 22 on Linux. 0 for an id that is none and
/// where there is no such signal. May be called in a signal handler.
PYLON_EXPORT int signalNumber(int id);

/// The id of a number that a handler was called with; 0 for any other number. May be called in a
/// signal handler.
PYLON_EXPORT int signalId(int number);

}  // namespace pylon
