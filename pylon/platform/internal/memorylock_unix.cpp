#include <pylon/platform/internal/memorylock.h>

#include <sys/mman.h>
#include <unistd.h>

namespace pylon::platform {

bool lockMemory(void* address, std::size_t size) {
    return mlock(address, size) == 0;
}

void unlockMemory(void* address, std::size_t size) {
    munlock(address, size);
}

std::size_t pageSize() {
    return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace pylon::platform
