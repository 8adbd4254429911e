#include <pylon/platform/synchronousprocess.h>

namespace pylon {

[[maybe_unused]] static const int registeredType = qRegisterMetaType<SynchronousProcess*>();

SynchronousProcess::SynchronousProcess(QObject* parent) : QProcess(parent) {}

SynchronousProcess::~SynchronousProcess() = default;

}  // namespace pylon
