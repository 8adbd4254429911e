// Makes a frame as a server would send it and takes it apart again.

#include <pylon/media/image.h>

#include <cstdio>
#include <stdexcept>

int main() {
    pylon::Image frame;
    frame.setTime(538417800000);  // 1/300 s since 1970
    frame.setTimeZone(pylon::TimeZone(4, pylon::TimeZoneAbbrevation("CET")));
    frame.setType('V');
    frame.setPayload("coded picture");
    QByteArray bytes;
    frame.generateNetworkImage(bytes, pylon::ImageHeaderVersion::V4);

    const pylon::Image received(bytes);
    std::printf("%u bytes, taken %s %s\n", received.totalSize(),
                received.dateTime("yyyy-MM-dd hh:mm:ss.zzz").c_str(),
                received.timeZoneName().c_str());
    try {
        pylon::Image(bytes.chopped(1));
    } catch (const std::runtime_error& error) {
        std::printf("one byte less: %s\n", error.what());
    }
}
