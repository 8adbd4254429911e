// How frames and headers show in debug output.

#include <pylon/media/image.h>
#include <pylon/media/imageheader.h>
#include <QtCore/QDebug>

namespace pylon {

QDebug operator<<(QDebug debug, const Image& image) {
    const QDebugStateSaver saver(debug);
    debug.noquote() << image.toString();
    return debug;
}

QDebug operator<<(QDebug debug, const ImageHeader& header) {
    const QDebugStateSaver saver(debug);
    if (header.isNull())
        debug << "ImageHeader(null)";
    else
        debug.nospace() << "ImageHeader(channel " << Qt::hex << header.channel() << ')';
    return debug;
}

}  // namespace pylon
