#include <pylon/time/timingswitches.h>

namespace pylon {

bool RENDER_TIMING_ENABLED = false;
bool STREAM_TIMING_ENABLED = false;

}  // namespace pylon
