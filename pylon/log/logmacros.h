#pragma once

#include <pylon/log/logclient.h>
#include <pylon/log/loglevel.h>

#include <type_traits>

/// @file
/// The macros that code logs with: PLOG_TRACE, PLOG_DEBUG, PLOG_INFO, PLOG_WARN, PLOG_ERROR,
/// PLOG_TIMING, PLOG_STARTUP and PLOG_GRAPHICS. Each takes a LogClient, the calling object (or
/// nullptr) and one of
///
/// - a printf format with its values: `PLOG_INFO(client, this, "%d frames", count);`
/// - a sub-module, a format and its values: `PLOG_DEBUG(client, this, 2048, "size %u", size);`
/// - a sub-module alone, which marks that a function was entered: `PLOG_TRACE(client, this, 2048);`
///
/// A call whose level or module is disabled costs a test or two and evaluates no argument; an
/// enabled one evaluates each once. Warn and Error are disabled by their module alone. Each macro
/// is one statement. Values are checked against the format where the compiler can.

#if defined(__clang__)
#define PYLON_PLOG_PRINTF_CHECK(at, from) __attribute__((__format__(__printf__, at, from)))
#elif defined(__GNUC__)
#define PYLON_PLOG_PRINTF_CHECK(at, from) __attribute__((__format__(__gnu_printf__, at, from)))
#else
#define PYLON_PLOG_PRINTF_CHECK(at, from)
#endif

namespace pylon::plog::internal {

template <class T>
concept SubModuleNumber = std::is_integral_v<T> || std::is_enum_v<T>;

// Never called: the compiler compares the format with the values.
PYLON_PLOG_PRINTF_CHECK(1, 2) inline void checkFormat(const char*, ...) {}
template <SubModuleNumber Number>
void checkFormat(Number) {}
template <SubModuleNumber Number>
PYLON_PLOG_PRINTF_CHECK(2, 3)
void checkFormat(Number, const char*, ...) {}

/// Where a line comes from.
struct Origin {
    const char* function;
    const char* prettyFunction;
    const void* object;
};

template <class... Values>
void submit(LogClientBase& client, LogLevel level, const Origin& origin, const char* format,
            Values... values) {
    client.log(level, origin.function, origin.prettyFunction, origin.object, Arg(format), Arg(),
               "DUMMY_STR", values...);
}

template <SubModuleNumber Number, class... Values>
void submit(LogClientBase& client, LogLevel level, const Origin& origin, Number subModule,
            const char* format, Values... values) {
    client.log(level, origin.function, origin.prettyFunction, origin.object,
               Arg(static_cast<unsigned int>(subModule)), Arg(format), "DUMMY_STR", format,
               values...);
}

template <SubModuleNumber Number>
void submit(LogClientBase& client, LogLevel level, const Origin& origin, Number subModule) {
    client.log(level, origin.function, origin.prettyFunction, origin.object,
               Arg(static_cast<unsigned int>(subModule)), Arg(), "DUMMY_STR");
}

}  // namespace pylon::plog::internal

/// What the macros below share.
#define PYLON_PLOG(client, level, levelEnabled, object, ...)                                      \
    do {                                                                                          \
        if (!(levelEnabled))                                                                      \
            break;                                                                                \
        auto& pylonLogClient = (client);                                                          \
        if (!pylonLogClient.isEnabled())                                                          \
            break;                                                                                \
        if (false)                                                                                \
            ::pylon::plog::internal::checkFormat(__VA_ARGS__);                                    \
        ::pylon::plog::internal::submit(pylonLogClient, level, {__func__, Q_FUNC_INFO, (object)}, \
                                        __VA_ARGS__);                                             \
    } while (false)

/// Logs at level Trace: the way of the program through its functions.
#define PLOG_TRACE(client, object, ...) \
    PYLON_PLOG(client, ::pylon::plog::Trace, ::pylon::plog::LG_trace_enabled, object, __VA_ARGS__)
/// Logs at level Debug: details for whoever looks for a fault.
#define PLOG_DEBUG(client, object, ...) \
    PYLON_PLOG(client, ::pylon::plog::Debug, ::pylon::plog::LG_debug_enabled, object, __VA_ARGS__)
/// Logs at level Info: what a user would want to know.
#define PLOG_INFO(client, object, ...) \
    PYLON_PLOG(client, ::pylon::plog::Info, ::pylon::plog::LG_info_enabled, object, __VA_ARGS__)
/// Logs at level Warn, which has no switch of its own: not as it should be.
#define PLOG_WARN(client, object, ...) \
    PYLON_PLOG(client, ::pylon::plog::Warn, true, object, __VA_ARGS__)
/// Logs at level Error, which has no switch of its own: an operation failed.
#define PLOG_ERROR(client, object, ...) \
    PYLON_PLOG(client, ::pylon::plog::Error, true, object, __VA_ARGS__)
/// Logs at level Timing: measured times.
#define PLOG_TIMING(client, object, ...) \
    PYLON_PLOG(client, ::pylon::plog::Timing, ::pylon::plog::LG_timing_enabled, object, __VA_ARGS__)
/// Logs at level Startup: steps of the start.
#define PLOG_STARTUP(client, object, ...)                                                 \
    PYLON_PLOG(client, ::pylon::plog::Startup, ::pylon::plog::LG_startup_enabled, object, \
               __VA_ARGS__)
/// Logs at level Graphics: graphics system and drivers.
#define PLOG_GRAPHICS(client, object, ...)                                                  \
    PYLON_PLOG(client, ::pylon::plog::Graphics, ::pylon::plog::LG_graphics_enabled, object, \
               __VA_ARGS__)
