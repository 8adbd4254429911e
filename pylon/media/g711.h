#pragma once

#include <pylon/export.h>

#include <cstddef>
#include <span>

/// @file
/// The two companding laws of ITU-T G.711, 8 bits a sample, for blocks of speech of any length.
///
/// Linear samples are 16-bit signed in host byte order and need not be aligned; use
/// `std::as_bytes` and `std::as_writable_bytes` on a span of integers. No function has state or
/// allocates: all may be called from any thread. Input and output must not overlap.

namespace pylon {

/// A companding law.
enum class G711Law : int {
    MuLaw,  ///< North America and Japan.
    ALaw    ///< Elsewhere.
};

/// Expands each byte of @p codes into one sample.
/// @return the number of samples written: as many as there are codes, or fewer when @p pcm is too
///     small for all.
PYLON_EXPORT std::size_t expandG711(G711Law law, std::span<const std::byte> codes,
                                    std::span<std::byte> pcm) noexcept;

/// Compresses each sample of @p pcm into one byte; a last odd byte is ignored. Uses the segments of
/// the early 16-bit form of the reference coder for both laws, so that the A-law code of a small
/// negative sample is the largest of its segment: -1 gives 0x5A.
/// @return the number of codes written: as many as there are samples, or fewer when @p codes is
///     too small for all.
PYLON_EXPORT std::size_t compressG711(G711Law law, std::span<const std::byte> pcm,
                                      std::span<std::byte> codes) noexcept;

}  // namespace pylon
