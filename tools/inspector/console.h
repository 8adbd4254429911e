#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QElapsedTimer>
#include <QtCore/QIODevice>
#include <QtCore/QString>

#include "terminal.h"

/// @file
/// The standard streams as the program uses them. Not thread-safe.

namespace pylon::inspector {

/// Standard output, gathered into large writes. A failure is kept until it is asked for: nothing
/// more is written after it.
class Output {
public:
    /// Append here, and flush() once isLarge().
    QByteArray& buffer() { return buffer_; }
    bool isLarge() const;
    void flush();

    /// Whether writing more makes no sense.
    bool ended() const { return state_ != WriteResult::Done; }
    /// The same, for another reason than a reader that went away, which is none to complain.
    bool failed() const { return state_ == WriteResult::Failed; }
    const QString& errorText() const { return error_; }

private:
    QByteArray buffer_;
    WriteResult state_ = WriteResult::Done;
    QString error_;
};

/// Standard input. read() gives what is there instead of waiting until all that was asked for has
/// come, so a live recording shows as it grows.
class StandardInput : public QIODevice {
public:
    StandardInput();
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char*, qint64) override { return -1; }
};

/// Colour of table text; without colour every text is empty.
struct Style {
    const char* heading = "";
    const char* key = "";
    const char* caution = "";
    const char* off = "";
};

/// Colours if standard output is a terminal that knows them and the variable NO_COLOR is not set.
Style outputStyle();

/// Prints "pylon-inspect: text" as a line on standard error.
void complain(const QString& text);

/// A bar on standard error that says how much of a long input is done. It appears after a while,
/// and only if standard error is a terminal.
class Progress {
public:
    /// @p total in bytes, 0 when unknown.
    Progress(qint64 total, bool enabled);
    ~Progress() { hide(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void update(qint64 done);
    /// Takes the bar away.
    void hide();
    /// Takes it away if standard output is about to print on the same terminal.
    void makeWay();

private:
    qint64 total_;
    bool enabled_;
    bool visible_ = false;
    qint64 nextUpdate_;  // ms on timer_
    QElapsedTimer timer_;
};

}  // namespace pylon::inspector
