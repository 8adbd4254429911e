#pragma once

#include <QtCore/qstring.h>
#include <pylon/log/logclient.h>

#include <optional>

/// @file
/// The program's own log lines: module Playback, those about frames with its sub-module Stream.

namespace pylon::inspector {

inline constexpr unsigned int streamSubModule = 2048;

/// What the options say about the log. Without any of them there is no log device, so that standard
/// error stays silent.
struct LogOptions {
    bool enabled = false;
    unsigned int levels;  ///< Mask of LogLevel bits.
    std::optional<QString> filter;

    LogOptions();
};

/// The client all lines go through.
plog::LogClientBase& logClient();

/// The mask for a list of level names, separated by commas; short and long names, in any case, and
/// "all". @return nothing, and in @p error the unknown names, if there are any.
std::optional<unsigned int> parseLogLevels(const QString& list, QString* error);

/// Applies @p options to the log manager. To be called once.
/// @return false, with the unknown names in @p error, for a filter that means nothing.
bool startLogging(const LogOptions& options, QString* error);

}  // namespace pylon::inspector
