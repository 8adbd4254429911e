#pragma once

#include <pylon/export.h>

/// @file
/// Assertions that reach the log before they end the process.
///
/// A failed assertion is logged as an Error line of module PylonSDK, file devices are flushed, and
/// Qt's assertion handler ends the process. Use the macros: they honour the switch. Everything here
/// may be called on any thread.

/// Asserts a condition; evaluated only while assertions are enabled.
#define P_ASSERT(cond) \
    (is_pAssertEnabled() ? pAssert(static_cast<bool>(cond), #cond, __FILE__, __LINE__) : void())

/// Asserts a condition, naming the place and what must hold there.
#define P_ASSERT_X(cond, where, what)                                                         \
    (is_pAssertEnabled() ? pAssertX(static_cast<bool>(cond), where, what, __FILE__, __LINE__) \
                         : void())

/// Ends the process if @p condition is false, whatever the switch says.
/// @param expression text of the condition.
PYLON_EXPORT void pAssert(bool condition, const char* expression, const char* file, int line);

/// The same with a place and a description in place of the expression.
PYLON_EXPORT void pAssertX(bool condition, const char* where, const char* what, const char* file,
                           int line);

/// As pAssert(), and warns in the log on every call: it stands in for a check at compile time. Use
/// static_assert in new code.
PYLON_EXPORT void pStaticAssert(bool condition, const char* expression, const char* file, int line);

/// As pAssertX(), with the warning of pStaticAssert().
PYLON_EXPORT void pStaticAssertX(bool condition, const char* where, const char* what,
                                 const char* file, int line);

/// @name The assertion switch
/// Process-wide, on at first. Only the macros heed it.
/// @{

/// Lets the macros check and, on failure, end the process.
PYLON_EXPORT void enable_pAssert();
/// Lets the macros evaluate nothing.
PYLON_EXPORT void disable_pAssert();
/// Whether the macros check.
PYLON_EXPORT bool is_pAssertEnabled();
/// @}
