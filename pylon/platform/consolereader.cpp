#include <pylon/platform/consolereader.h>

namespace pylon {

ConsoleReader::ConsoleReader() = default;

ConsoleReader::~ConsoleReader() = default;

void ConsoleReader::run() {}

}  // namespace pylon
