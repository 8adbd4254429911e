#pragma once

namespace pylon::plog {

/// What an Arg holds.
union ArgVal {
    const char* str = nullptr;  ///< Not owned.
    unsigned int subMod;
};

/// One of the first two arguments of a log call: a sub-module number, a format text or nothing.
/// Lets a logging client take either in the same place. A value type.
struct Arg {
    /// Values of @c type.
    enum Type : int { None = 0, String = 1, SubModule = 2 };

    Arg() = default;
    Arg(const char* text) : type(String) { val.str = text; }
    Arg(unsigned int subModule) : type(SubModule) { val.subMod = subModule; }

    /// The text; meaningful only when @c type is String.
    const char* str() const { return val.str; }
    /// The sub-module number; meaningful only when @c type is SubModule.
    unsigned int subMod() const { return val.subMod; }

    int type = None;
    ArgVal val{};
};

}  // namespace pylon::plog
