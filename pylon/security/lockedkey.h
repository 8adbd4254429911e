#pragma once

#include <pylon/export.h>

#include <QtCore/QtGlobal>

#include <cstddef>
#include <span>

namespace pylon::CryptoTools {

/// A key in memory pages of its own that the operating system is asked to keep out of its paging
/// file, and a time that goes with it. It has one owner; its bytes are wiped as soon as they are
/// not needed any more. Use it where you would use SymmetricKey in older code.
///
/// Thread-safety: none; an object belongs to one thread at a time.
class PYLON_EXPORT LockedKey {
public:
    /// A null key without memory.
    LockedKey() = default;
    /// A copy of @p bytes, as setKey() makes it.
    explicit LockedKey(std::span<const unsigned char> bytes, qint64 time = 0);
    /// Leaves @p other a null key.
    LockedKey(LockedKey&& other) noexcept;
    /// Wipes and frees what this key had; leaves @p other a null key.
    LockedKey& operator=(LockedKey&& other) noexcept;
    /// Wipes, unlocks and frees the memory.
    ~LockedKey();

    /// Copies @p bytes, which may be of this key, and wipes those of the key before. Memory is only
    /// taken anew when more pages are needed.
    /// @param time any value that the caller wants to have back from time().
    /// @return false if there was no memory; the key is then null.
    bool setKey(std::span<const unsigned char> bytes, qint64 time = 0);

    /// The bytes; valid until the key is changed, moved from or destroyed.
    std::span<const unsigned char> key() const { return {key_, size_}; }
    /// Number of bytes.
    std::size_t size() const { return size_; }
    /// As given to setKey().
    qint64 time() const { return time_; }
    /// Whether there are no bytes.
    bool isNull() const { return size_ == 0; }
    /// Whether the system keeps the bytes in physical memory. It may refuse to when a process locks
    /// much; the key works all the same.
    bool isLocked() const { return locked_; }

    /// Wipes the bytes and makes the key null and its time 0; the memory stays for the next key.
    void clear();

private:
    void swap(LockedKey& other) noexcept;
    static LockedKey withRoomFor(std::size_t size);

    unsigned char* key_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
    qint64 time_ = 0;
    bool locked_ = false;
};

}  // namespace pylon::CryptoTools
