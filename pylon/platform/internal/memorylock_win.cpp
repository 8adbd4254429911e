#include <pylon/platform/internal/memorylock.h>

#include <windows.h>

namespace pylon::platform {

bool lockMemory(void* address, std::size_t size) {
    return VirtualLock(address, size) != 0;
}

void unlockMemory(void* address, std::size_t size) {
    VirtualUnlock(address, size);
}

std::size_t pageSize() {
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return info.dwPageSize;
}

}  // namespace pylon::platform
