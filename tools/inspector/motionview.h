#pragma once

#include "inspector.h"

namespace pylon::inspector {

/// Shows the motion mask or difference map in the file that @p options name, and writes its
/// picture if they ask for it.
ExitStatus showMotion(const Options& options);

}  // namespace pylon::inspector
