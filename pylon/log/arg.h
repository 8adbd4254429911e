#pragma once

namespace pylon::plog {

/// What an Arg holds.
union ArgVal {
    const char* str = nullptr;  ///< Not owned.
    unsigned int subMod;        ///< Number of the sub-module.
};

/// One of the first two arguments of a log call: a sub-module number, a format text or nothing.
/// Lets a logging client take either in the same place. A value type.
struct Arg {
    /// Values of @c type.
    enum Type : int { None = 0, String = 1, SubModule = 2 };

    Arg() = default;
    /// A text, not owned; it must outlive the call that takes it.
    Arg(const char* text) : type(String) { val.str = text; }
    /// A sub-module number.
    Arg(unsigned int subModule) : type(SubModule) { val.subMod = subModule; }

    /// The text; meaningful only when @c type is String.
    const char* str() const { return val.str; }
    /// The sub-module number; meaningful only when @c type is SubModule.
    unsigned int subMod() const { return val.subMod; }

    int type = None;  ///< One of Type: which of the two @c val holds.
    ArgVal val{};     ///< Read by str() and subMod().
};

}  // namespace pylon::plog
