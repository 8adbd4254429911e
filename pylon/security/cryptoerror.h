#pragma once

#include <pylon/export.h>

#include <QtCore/QString>

namespace pylon::CryptoTools {

/// What went wrong in an operation of cryptotools.h: a code, the meaning of which depends on the
/// operation, and a text. Operations write it only when they fail.
///
/// Thread-safety: a plain value; objects are independent of each other.
struct PYLON_EXPORT CryptoError {
    /// No error.
    CryptoError() = default;
    /// An error with code @p id, which may be 0, and an empty text.
    CryptoError(int id);
    /// All three fields; moving copies too, so what was moved from stays as it was.
    CryptoError(const CryptoError&) = default;
    /// @copydoc CryptoError(const CryptoError&)
    CryptoError& operator=(const CryptoError&) = default;
    virtual ~CryptoError();

    /// The text, meant for a person; empty when there is none.
    virtual QString toString() const;
    /// The code. 0 does not mean success: ask hasError().
    virtual int errorId() const;
    /// Clears code and text. hasError() stays as it was: a record that once held an error says so
    /// until it is replaced by a new one.
    virtual void reset();
    /// Whether the record was ever given an error.
    virtual bool hasError() const;

    /// Makes the record one of an error, whatever @p id is.
    void setError(int id, const QString& text);

private:
    qint32 errorId_ = 0;
    QString message_;
    bool hasError_ = false;
};

}  // namespace pylon::CryptoTools
