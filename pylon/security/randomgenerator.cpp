#include <pylon/security/randomgenerator.h>

#include <QtCore/QTime>

namespace pylon {

QMutex RandomGenerator::mutex_;
bool RandomGenerator::initialised_ = false;
int RandomGenerator::seed_ = 0;
QRandomGenerator RandomGenerator::generator_;

void RandomGenerator::init(int seed) {
    const QMutexLocker lock(&mutex_);
    initialised_ = true;
    seed_ = seed;
    generator_ = QRandomGenerator(static_cast<quint32>(seed));
}

void RandomGenerator::init() {
    init(QTime::currentTime().msecsSinceStartOfDay());
}

bool RandomGenerator::isInitalised() {
    const QMutexLocker lock(&mutex_);
    return initialised_;
}

int RandomGenerator::seed() {
    const QMutexLocker lock(&mutex_);
    return seed_;
}

quint64 RandomGenerator::randomNumber() {
    return generator_.generate64();
}

QByteArray RandomGenerator::randomPayload(int minSize, int maxSize) {
    if (maxSize < minSize)
        return {};
    qint64 size = minSize;
    // 64 bits: the sizes may lie more than an int apart.
    if (maxSize != minSize)
        size += static_cast<qint64>(randomNumber() % static_cast<quint64>(qint64{maxSize} - size));
    QByteArray payload(size, Qt::Uninitialized);  // empty for a size below 1
    for (char& byte : payload)
        byte = static_cast<char>(randomNumber());
    return payload;
}

}  // namespace pylon
