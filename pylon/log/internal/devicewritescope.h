#pragma once

/// @file
/// Not part of the public interface.

namespace pylon::plog {

class LogDevice;

/// Marks that this thread is busy inside a device, for as long as it lives.
///
/// What a device logs or warns from inside must not come back to it: it would recurse without end,
/// or wait for a lock that this very thread holds.
class DeviceWriteScope {
public:
    explicit DeviceWriteScope(const LogDevice& device);
    ~DeviceWriteScope();
    DeviceWriteScope(const DeviceWriteScope&) = delete;
    DeviceWriteScope& operator=(const DeviceWriteScope&) = delete;

    /// Whether this thread is inside @p device.
    static bool isInside(const LogDevice& device);
    /// Whether this thread is inside any device.
    static bool isInsideAny();

private:
    const LogDevice* device_;
    const DeviceWriteScope* outer_;
};

}  // namespace pylon::plog
