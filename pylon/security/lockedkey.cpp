#include <pylon/security/lockedkey.h>

#include <pylon/platform/internal/memorylock.h>

#include <openssl/crypto.h>

#include <cstring>
#include <new>
#include <utility>

namespace pylon::CryptoTools {

LockedKey::LockedKey(std::span<const unsigned char> bytes, qint64 time) {
    setKey(bytes, time);
}

LockedKey::LockedKey(LockedKey&& other) noexcept {
    swap(other);
}

LockedKey& LockedKey::operator=(LockedKey&& other) noexcept {
    LockedKey(std::move(other)).swap(*this);
    return *this;
}

LockedKey::~LockedKey() {
    if (!key_)
        return;
    OPENSSL_cleanse(key_, size_);
    if (locked_)
        platform::unlockMemory(key_, capacity_);
    operator delete (key_, std::align_val_t{platform::pageSize()});
}

void LockedKey::swap(LockedKey& other) noexcept {
    std::swap(key_, other.key_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
    std::swap(time_, other.time_);
    std::swap(locked_, other.locked_);
}

// Whole pages, so that unlocking them does not unlock what belongs to somebody else.
LockedKey LockedKey::withRoomFor(std::size_t size) {
    const std::size_t page = platform::pageSize();
    const std::size_t capacity = (size + page - 1) / page * page;
    LockedKey key;
    key.key_ =
        static_cast<unsigned char*>(operator new (capacity, std::align_val_t{page}, std::nothrow));
    if (key.key_) {
        key.capacity_ = capacity;
        key.locked_ = platform::lockMemory(key.key_, capacity);
    }
    return key;
}

bool LockedKey::setKey(std::span<const unsigned char> bytes, qint64 time) {
    if (bytes.size() > capacity_)
        *this = withRoomFor(bytes.size());
    if (bytes.size() > capacity_)
        return false;
    if (!bytes.empty())
        std::memmove(key_, bytes.data(), bytes.size());
    if (bytes.size() < size_)
        OPENSSL_cleanse(key_ + bytes.size(), size_ - bytes.size());
    size_ = bytes.size();
    time_ = time;
    return true;
}

void LockedKey::clear() {
    if (key_)
        OPENSSL_cleanse(key_, size_);
    size_ = 0;
    time_ = 0;
}

}  // namespace pylon::CryptoTools
