#include <pylon/security/cryptoerror.h>

namespace pylon::CryptoTools {

CryptoError::CryptoError(int id) : errorId_(id), hasError_(true) {}

CryptoError::~CryptoError() = default;

QString CryptoError::toString() const {
    return message_;
}

int CryptoError::errorId() const {
    return errorId_;
}

void CryptoError::reset() {
    message_.clear();
    errorId_ = 0;
}

bool CryptoError::hasError() const {
    return hasError_;
}

void CryptoError::setError(int id, const QString& text) {
    errorId_ = id;
    message_ = text;
    hasError_ = true;
}

}  // namespace pylon::CryptoTools
