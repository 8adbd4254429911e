#include <pylon/pylon.h>

#include <cstdio>

namespace {
pylon::plog::LogClient<pylon::plog::Setup> client;
}

int main() {
    const auto console = QSharedPointer<pylon::plog::LogConsole>::create(stdout);
    pylon::plog::LogManager::instance()->addLogDevice(console);

    pylon::Image frame;
    frame.setTime(538417800000);
    frame.setTimeZone(pylon::TimeZone(1, 0));
    frame.setPayload("picture");
    QByteArray bytes;
    frame.generateNetworkImage(bytes, pylon::ImageHeaderVersion::V4);

    const pylon::Image received(bytes);
    PLOG_INFO(client, nullptr, "a frame of %u bytes at %s", received.totalSize(),
              received.dateTime("HH:mm:ss").c_str());
    const pylon::XmlResponse reply(received.payload(), QString());
    return reply.error().line == 1 ? 0 : 1;
}
