#pragma once

#include <pylon/export.h>

#include <QtCore/QList>
#include <QtCore/QString>

#include <tuple>

/// @file
/// Comparing and reducing version numbers. Thread-safety: all functions are pure.

namespace pylon {

/// The lowest "major.minor" among version texts such as "4.1.7"; what follows the minor number is
/// ignored.
///
/// A number that cannot be read counts as 0. Texts without a "." are passed over, and so are major
/// numbers from 9999 up: that number stands for "none".
/// @return empty if there is none, or if the lowest version has the minor number 9999.
PYLON_EXPORT QString lowestVersion(const QList<QString>& versions);

/// @name Order of versions
/// By major, minor and patch number, the first most significant.
/// @{

/// Whether @p a comes before @p b: major and minor number.
inline bool versionLessThan(const std::tuple<unsigned long long, unsigned long long>& a,
                            const std::tuple<unsigned long long, unsigned long long>& b) {
    return a < b;
}
/// Whether @p a comes before @p b: major, minor and patch number.
inline bool versionLessThan(
    const std::tuple<unsigned long long, unsigned long long, unsigned long long>& a,
    const std::tuple<unsigned long long, unsigned long long, unsigned long long>& b) {
    return a < b;
}
/// Whether @p a comes before @p b or is equal to it: major and minor number.
inline bool versionLessThanEqual(const std::tuple<unsigned long long, unsigned long long>& a,
                                 const std::tuple<unsigned long long, unsigned long long>& b) {
    return a <= b;
}
/// Whether @p a comes before @p b or is equal to it: major, minor and patch number.
inline bool versionLessThanEqual(
    const std::tuple<unsigned long long, unsigned long long, unsigned long long>& a,
    const std::tuple<unsigned long long, unsigned long long, unsigned long long>& b) {
    return a <= b;
}
/// @}

}  // namespace pylon
