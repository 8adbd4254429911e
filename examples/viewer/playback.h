#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QTimer>

namespace pylon::viewer {

/// The clock of a player: a position that stands, or runs on to the end of the recording.
///
/// Positions are in ms from the beginning. Lives in a thread with an event loop.
class Playback : public QObject {
    Q_OBJECT

public:
    explicit Playback(QObject* parent = nullptr);

    /// Starts afresh, standing at the beginning of a recording of that time span (1/300 s).
    void setSpan(qint64 begin, qint64 end);

    int position() const { return position_; }
    int duration() const { return duration_; }
    /// The position as time, in 1/300 s since the Unix epoch: a frame is due at the position that
    /// its own time gives.
    qint64 time() const;
    bool isPlaying() const { return timer_.isActive(); }

public slots:
    /// Moves to a position, cut to 0..duration(); goes on from there when playing.
    void seek(int position);
    /// From the end it plays again from the beginning.
    void play();
    void pause();
    void toggle();

signals:
    void positionChanged(int position);
    /// Everything behind one time, up to another (1/300 s), was played rather than skipped.
    void played(qint64 from, qint64 to);
    void playingChanged(bool playing);

private:
    void tick();

    QTimer timer_;
    QElapsedTimer sinceStart_;  // of playing, or of the last seek while playing
    int startPosition_ = 0;
    int position_ = 0;
    int duration_ = 0;
    qint64 begin_ = 0;
};

}  // namespace pylon::viewer
