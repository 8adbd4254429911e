#pragma once

#include <QtCore/QString>

#include <optional>

#include "console.h"
#include "dumper.h"
#include "extractor.h"
#include "options.h"
#include "summary.h"
#include "tablewriter.h"

namespace pylon {
class FrameReader;
}

namespace pylon::inspector {

struct Recording;

/// Shows the frames of one recording, extracts and dumps them, all as the options say. Not
/// thread-safe.
class Report {
public:
    /// @param number of the recording, from 1 on, if there are several; 0 for the only one.
    Report(const Options& options, Output& output, const Recording& recording, int number);

    /// Takes the current frame of @p reader, which begins at @p offset of the recording.
    void add(const FrameReader& reader, qint64 offset);
    /// Shows all that is known so far, as before waiting for more; @p offset is how far it got.
    void flush(qint64 offset);
    /// Shows what there is to show at the end.
    void finish();

    /// Whether there is still somebody to show frames to, and no reason to stop.
    bool goesOn() const { return !output_.ended() && !stopped_; }
    /// Complains on standard error, below what was shown so far.
    void complain(const QString& name, const QString& reason);
    /// Whether there was nothing to complain about.
    bool isGood() const { return good_; }

    qint64 frames() const { return frames_; }

private:
    void print();
    void finishExtraction();
    void showSummary();

    const Options& options_;
    Output& output_;
    QString name_;
    Style style_;
    TableWriter table_;
    Summary summary_;
    std::optional<Extractor> extractor_;
    std::optional<Dumper> dumper_;
    Progress progress_;
    qint64 frames_ = 0;
    bool stopped_ = false;
    bool good_ = true;
};

}  // namespace pylon::inspector
