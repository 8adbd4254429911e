#pragma once

#include <QtCore/QtGlobal>

/// @file
/// Symbol visibility of the shared library. Only what carries @c PYLON_EXPORT can be linked
/// against.

/// Marks what the shared library offers to others.
#ifdef PYLON_BUILD_LIBRARY
#define PYLON_EXPORT Q_DECL_EXPORT
#else
#define PYLON_EXPORT Q_DECL_IMPORT
#endif
