#pragma once

#include <pylon/export.h>

#include <QtCore/QtGlobal>

namespace pylon::CryptoTools {

/// A key in a buffer that the operating system is asked to keep out of its paging file, and a time
/// that goes with it.
///
/// @warning Assignment does not copy the buffer: both objects then refer to the same one, and
/// destroying both of them is an error; the buffer that the target had is lost. Contents are never
/// wiped. Locking counts whole pages, so when one key is freed, others that happen to lie on its
/// page may be unlocked too. All this is for code that depends on it; new code takes LockedKey.
///
/// Thread-safety: none; an object, and all that share its buffer, belong to one thread at a time.
class PYLON_EXPORT SymmetricKey {
public:
    /// A null key without buffer.
    SymmetricKey() = default;
    /// No copies: each would be destroyed, and with it the buffer of the original.
    SymmetricKey(const SymmetricKey&) = delete;
    /// Takes over all fields of @p other as they stand, its buffer included; see the warning above.
    SymmetricKey& operator=(const SymmetricKey& other) = default;
    /// Unlocks and frees the buffer.
    ~SymmetricKey();

    /// Copies @p length bytes from @p data. The buffer grows to exactly @p length if it is smaller
    /// and is used again if not. If @p data is null or there is no memory, the key becomes null.
    /// @param time any value that the caller wants to have back from time().
    void setKey(unsigned char* data, unsigned int length, long long time);

    /// The buffer, owned by the key; null before the first setKey(). It moves when it grows.
    unsigned char* key() const { return key_; }
    /// Bytes in use.
    unsigned int size() const { return size_; }
    /// As given to setKey().
    long long time() const { return time_; }
    /// Whether no bytes are in use.
    bool isNull() const { return size_ == 0; }

    /// Makes the key null and its time 0. The buffer stays, and so do the bytes in it.
    void clear();

private:
    bool reserve(unsigned int length);

    quint32 size_ = 0;
    quint32 capacity_ = 0;
    unsigned char* key_ = nullptr;
    qint64 time_ = 0;
};

}  // namespace pylon::CryptoTools
