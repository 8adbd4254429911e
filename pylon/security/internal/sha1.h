#pragma once

#include <QtCore/QByteArrayView>

#include <array>

namespace pylon::internal {

/// SHA-1 (FIPS 180-4), which stored credentials are bound to.
using Sha1Digest = std::array<unsigned char, 20>;

/// Cannot fail, whichever OpenSSL providers the host has loaded.
Sha1Digest sha1(QByteArrayView bytes);

}  // namespace pylon::internal
