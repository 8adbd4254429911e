#include <pylon/security/symmetrickey.h>

#include <pylon/platform/internal/memorylock.h>

#include <cstring>
#include <new>

namespace pylon::CryptoTools {

static void release(unsigned char* key, quint32 capacity) {
    if (capacity == 0 || !key)
        return;
    platform::unlockMemory(key, capacity);
    delete[] key;
}

SymmetricKey::~SymmetricKey() {
    release(key_, capacity_);
}

bool SymmetricKey::reserve(unsigned int length) {
    if (capacity_ >= length)
        return true;
    release(key_, capacity_);
    key_ = new (std::nothrow) unsigned char[length];
    capacity_ = key_ ? length : 0;
    if (key_)
        platform::lockMemory(key_, capacity_);
    return key_ != nullptr;
}

void SymmetricKey::setKey(unsigned char* data, unsigned int length, long long time) {
    size_ = data && reserve(length) ? length : 0;
    // The bytes may be the key's own.
    if (size_ > 0)
        std::memmove(key_, data, size_);
    time_ = time;
}

void SymmetricKey::clear() {
    size_ = 0;
    time_ = 0;
}

}  // namespace pylon::CryptoTools
