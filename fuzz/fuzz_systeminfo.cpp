// What the Windows tools print about a machine: values are texts without a colon and without space
// around them, all of them from the text.

#include "fuzz.h"

#include <pylon/platform/systeminfo.h>

void fuzz(const QByteArray& input) {
    const QString text = QString::fromUtf8(input);
    pylon::SystemInfo info;
    const auto [hasMemory, hasProcessors] = pylon::parseSystemInfo(text, info);
    FUZZ_CHECK(hasProcessors == !info.processors.isEmpty());
    FUZZ_CHECK(hasMemory ? text.contains("MB") : info.totalPhysicalMemory.isNull());
    QStringList values = info.processors;
    values << info.hostName << info.osName << info.osVersion << info.systemType << info.productId
           << info.bios << info.totalPhysicalMemory << info.availablePhysicalMemory;
    for (const auto& [name, physicalAddress, ipAddress, subnetMask] : pylon::parseNetworkInfo(text))
        values << name << physicalAddress << ipAddress << subnetMask;
    for (const QString& value : values)
        FUZZ_CHECK(text.contains(value) && !value.contains(':') && value == value.trimmed());
}
