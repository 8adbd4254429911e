#pragma once

#include <pylon/export.h>

namespace pylon {

/// @name Switches for timing output of the host
/// Both start as false. The library never reads them: host code sets and tests them to switch its
/// own output. Plain variables: set them before other threads read them.
/// @{

/// Output of rendering times.
extern PYLON_EXPORT bool RENDER_TIMING_ENABLED;
/// Output of stream times.
extern PYLON_EXPORT bool STREAM_TIMING_ENABLED;

/// @}

}  // namespace pylon
