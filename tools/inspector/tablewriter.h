#pragma once

#include <QtCore/QByteArray>

#include <optional>

#include "console.h"
#include "zones.h"

namespace pylon {
class FrameReader;
}

namespace pylon::inspector {

/// The aligned table with a line a frame. Widths are fixed beforehand, so a frame can be shown as
/// soon as it is read; a cell that is wider than usual pushes the rest of its line.
class TableWriter {
public:
    /// @param inputSize in bytes, 0 when unknown: the room for offsets.
    /// @param zone for all times; without it each frame's own.
    TableWriter(qint64 inputSize, std::optional<Zone> zone, const Style& style);

    /// Appends the line of the current frame of @p reader, which begins at @p offset of the
    /// recording; the first time below a heading.
    void appendFrame(QByteArray& out, const FrameReader& reader, qint64 offset);

private:
    void appendHeading(QByteArray& out) const;
    void appendTime(QByteArray& out, const Image& image);

    int offsetWidth_;
    std::optional<Zone> zone_;
    Style style_;
    bool headingDone_ = false;
    QByteArray cell_;  // scratch
};

}  // namespace pylon::inspector
