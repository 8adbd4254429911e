#pragma once

#include <pylon/media/image.h>
#include <QtCore/QByteArray>

#include <map>
#include <optional>

#include "console.h"
#include "zones.h"

namespace pylon::inspector {

/// Figures about the frames of one camera and track.
struct TrackFigures {
    explicit TrackFigures(const Image& first);
    void add(const Image& image);

    qint64 frames = 0;
    qint64 keyFrames = 0;
    qint64 bytes = 0;
    Image earliest;
    Image latest;
    qint64 previousTime;    ///< 1/300 s
    qint64 longestGap = 0;  ///< 1/300 s, forward between frames that follow each other
    QByteArray cameraName;  ///< the last one, as sent
};

/// Figures about the frames of one input, for each camera and track. Memory depends on the number
/// of these, which is limited, not on the number of frames.
class Summary {
public:
    void add(const Image& image);

    qint64 frames() const { return frames_; }

    /// The figures as an aligned table; its heading alone without frames.
    /// @param zone for all times; without it the own zone of the frames they belong to.
    QByteArray text(const std::optional<Zone>& zone, const Style& style) const;

private:
    qint64 frames_ = 0;
    std::map<quint64, TrackFigures> tracks_;  // by camera << 16 | track
};

}  // namespace pylon::inspector
