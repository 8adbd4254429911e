#pragma once

#include <pylon/log/logclient.h>
#include <QtCore/QString>

#include <optional>

/// @file
/// The program's own log lines: module Playback, those about frames with its sub-module Stream.

namespace pylon::inspector {

inline constexpr unsigned int streamSubModule = 2048;

/// What the options say about the log. Without any of them there is no log device, so that standard
/// error stays silent.
struct LogOptions {
    bool enabled = false;
    QString file;              ///< Where to log; empty for standard error.
    qint64 maxFileSize = 100;  ///< Of that file before it is rotated, in MiB, 1 to 1000.
    unsigned int levels;       ///< Mask of LogLevel bits.
    std::optional<QString> filter;

    LogOptions();
};

/// The client all lines go through.
plog::LogClientBase& logClient();

/// The mask for a list of level names, separated by commas; short and long names, in any case, and
/// "all". @return nothing, and in @p error the unknown names, if there are any.
std::optional<unsigned int> parseLogLevels(const QString& list, QString* error);

/// Applies the filter and the levels of @p options to the log manager.
/// @return false, with the unknown names in @p error, for a filter that means nothing.
bool applyFilter(const LogOptions& options, QString* error);

/// Starts the log that @p options ask for, if any.
/// @return false, with the reason in @p error, when its file cannot be written.
bool openLog(const LogOptions& options, QString* error);

}  // namespace pylon::inspector
