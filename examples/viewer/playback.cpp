#include "playback.h"

#include <pylon/time/timeconversion.h>

#include <algorithm>
#include <limits>

namespace pylon::viewer {

namespace {

constexpr int tickMSecs = 40;

}  // namespace

Playback::Playback(QObject* parent) : QObject(parent) {
    timer_.setInterval(tickMSecs);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &Playback::tick);
}

void Playback::setSpan(qint64 begin, qint64 end) {
    pause();
    begin_ = begin;
    duration_ = static_cast<int>(
        std::clamp<qint64>(toMSecs(end - begin), 0, std::numeric_limits<int>::max()));
    position_ = 0;
    emit positionChanged(position_);
}

qint64 Playback::time() const {
    // Rounded up, the inverse of the conversion to milliseconds, which cuts.
    return begin_ + (qint64{position_} * 3 + 9) / 10;
}

void Playback::seek(int position) {
    position = std::clamp(position, 0, duration_);
    startPosition_ = position;
    sinceStart_.start();
    if (position == position_)
        return;
    position_ = position;
    emit positionChanged(position_);
}

void Playback::play() {
    if (isPlaying())
        return;
    seek(position_ == duration_ ? 0 : position_);
    timer_.start();
    emit playingChanged(true);
}

void Playback::pause() {
    if (!isPlaying())
        return;
    timer_.stop();
    emit playingChanged(false);
}

void Playback::toggle() {
    isPlaying() ? pause() : play();
}

void Playback::tick() {
    const qint64 from = time();
    const qint64 position = startPosition_ + sinceStart_.elapsed();
    position_ = static_cast<int>(std::min<qint64>(position, duration_));
    emit positionChanged(position_);
    emit played(from, time());
    if (position_ == duration_)
        pause();
}

}  // namespace pylon::viewer
