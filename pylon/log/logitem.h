#pragma once

#include <pylon/export.h>
#include <pylon/log/loglevel.h>
#include <pylon/log/logmodule.h>
#include <pylon/time/timestamp.h>
#include <QtCore/QByteArray>
#include <QtCore/QMetaType>
#include <QtCore/QString>

class QDebug;

namespace pylon::plog {

/// One message on its way to the log devices, with everything known about its origin.
///
/// An item renders itself as a line of text, in two forms that differ in three ways: the byte form
/// has a column with the object's address and the text form has not; the byte form is made for
/// files and avoids every conversion; and the arrow of the module Test stands before the text
/// form's prefix and behind the byte form's.
///
/// Lines are made on first request and kept in the item. Names are static texts that are not owned;
/// a null one shows as "(null)". Thread-safety: rendering changes the item's cache, so one item
/// belongs to one thread at a time; different items may be rendered at once.
class PYLON_EXPORT LogItem {
public:
    /// An item stamped with the current time.
    /// @param submods sub-module bits, defaultSubModule when the caller named none.
    /// @param moduleName display name of the module.
    /// @param function plain name of the calling function.
    /// @param prettyFunction its full signature.
    /// @param object the calling object or null; never dereferenced.
    /// @param context short tag for a column of its own, empty for none.
    /// @param message the formatted message, UTF-8.
    LogItem(LogLevel level, Module module, unsigned int submods, const char* moduleName,
            const char* function, const char* prettyFunction, const void* object,
            const QByteArray& context, QByteArray message);

    /// A finished line, returned by both forms as it stands. Its stamp is not set.
    explicit LogItem(const QString& text);

    /// Copies take no more memory than they need, which the original may, being made for speed.
    LogItem(const LogItem& other);
    /// @copydoc LogItem(const LogItem&)
    LogItem& operator=(const LogItem& other);
    LogItem(LogItem&& other) noexcept = default;
    LogItem& operator=(LogItem&& other) noexcept = default;
    ~LogItem() = default;

    /// Level of the message; Info for a finished line.
    LogLevel logLevel() const { return level_; }
    /// Module it belongs to.
    Module module() const { return module_; }
    /// Sub-module bits, defaultSubModule for none.
    unsigned int submods() const { return submods_; }
    /// Moment of logging.
    const Timestamp& timestamp() const { return timestamp_; }
    /// Display name of the module; static text, null for a finished line.
    const char* moduleName() const { return moduleName_; }
    /// The full signature of the calling function, or its plain name; see usePrettyFunction().
    const char* function() const { return use_pretty_function_ ? prettyFunction_ : function_; }
    /// Address of the calling object, for comparing only.
    const void* object() const { return object_; }
    /// Text of the tag column, empty for none.
    const QByteArray& context() const { return context_; }
    /// The message without any prefix, UTF-8; empty for a finished line.
    const QByteArray& rawMessage() const { return message_; }

    /// The line for consoles and custom devices, without a line terminator:
    /// "[time][level][module][P:pid][T:tid][context] function: message". The prefix is cut at 511
    /// bytes, the message never. The reference lives as long as the item.
    QString& toString() const;

    /// The line for files: as toString(), with "[O:address]" behind the thread, UTF-8.
    /// The reference lives as long as the item.
    QByteArray& toCString() const;

    /// Appends the line that toCString() gives to @p out, without keeping it in the item.
    void appendTo(QByteArray& out) const;

    /// Writes `LogItem(line)` with the line that toCString() gives.
    friend PYLON_EXPORT QDebug operator<<(QDebug debug, const LogItem& item);

    /// @name Display switches
    /// Process-wide; set them before other threads log. Only usePrettyFunction() changes any
    /// output; the columns of a line are fixed.
    /// @{

    /// Kept for hosts that set it; lines always show the level.
    static void showLevel(bool on) { show_level_ = on; }
    /// Kept for hosts that set it; lines always show the module.
    static void showModule(bool on) { show_module_ = on; }
    /// Kept for hosts that set it; lines always show the function.
    static void showFunction(bool on) { show_function_ = on; }
    /// Kept for hosts that set it; lines always show the thread.
    static void showTID(bool on) { show_tid_ = on; }
    /// Whether lines show the full signature of the calling function (the default) or its plain
    /// name. Lines already made stay as they are.
    static void usePrettyFunction(bool on) { use_pretty_function_ = on; }

    static bool show_level_;           ///< As showLevel() left it.
    static bool show_module_;          ///< As showModule() left it.
    static bool show_function_;        ///< As showFunction() left it.
    static bool show_tid_;             ///< As showTID() left it.
    static bool use_pretty_function_;  ///< As usePrettyFunction() left it.
    /// @}

private:
    friend class LogClientBase;

    static unsigned short getShortProcessId();
    static unsigned short getShortThreadId();

    enum class Form { Text, Bytes };
    /// Writes the prefix of a line into a buffer of maxPrefixSize characters.
    /// @return its length.
    qsizetype writePrefix(char* buffer, Form form) const;
    void appendLine(QByteArray& out) const;

    LogLevel level_;
    Module module_;
    unsigned int submods_;
    Timestamp timestamp_;
    const char* moduleName_;
    const char* function_;
    const char* prettyFunction_;
    const void* object_;
    QByteArray context_;
    QByteArray message_;
    mutable QString textCache_;
    mutable QByteArray bytesCache_;
};

/// Hexadecimal dump for log messages: two lower-case digits and a blank for every byte, the last
/// one included; empty for no bytes. Thread-safe.
PYLON_EXPORT QString printByteArray(const QByteArray& bytes);

}  // namespace pylon::plog

Q_DECLARE_METATYPE(pylon::plog::LogItem)
