#pragma once

#include <cstddef>

/// @file
/// Keeps secrets out of the paging file. Not part of the public interface.

namespace pylon::platform {

/// Keeps the pages that @p address to @p address + @p size touch in physical memory.
/// @return false if the system refused, for instance because the process has locked its share.
bool lockMemory(void* address, std::size_t size);

/// Ends what lockMemory() did for all these pages, however often each was locked.
void unlockMemory(void* address, std::size_t size);

/// Bytes in a page; a power of two.
std::size_t pageSize();

}  // namespace pylon::platform
