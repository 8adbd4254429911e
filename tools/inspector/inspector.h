#pragma once

#include "options.h"

namespace pylon::inspector {

/// Exit status of the program.
enum ExitStatus : int { Success = 0, InputFailed = 1, UsageError = 2 };

/// Shows all files of @p options; one that fails is reported on standard error and does not keep
/// the others from being shown.
ExitStatus inspect(const Options& options);

}  // namespace pylon::inspector
