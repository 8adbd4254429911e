// What the Windows tools print about a machine: values are texts without a colon and without space
// around them, all of them from the text.

#include "fuzz.h"

#include <pylon/platform/systeminfo.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = QString::fromUtf8(bytesOf(data, size));
    pylon::SystemInfo info;
    const pylon::SystemInfoFindings findings = pylon::parseSystemInfo(text, info);
    FUZZ_CHECK(findings.processors == !info.processors.isEmpty());
    FUZZ_CHECK(findings.memory ? text.contains("MB") : info.totalPhysicalMemory.isNull());
    QStringList values = info.processors;
    values << info.hostName << info.osName << info.osVersion << info.systemType << info.productId
           << info.bios << info.totalPhysicalMemory << info.availablePhysicalMemory;
    for (const auto& [name, physicalAddress, ipAddress, subnetMask] : pylon::parseNetworkInfo(text))
        values << name << physicalAddress << ipAddress << subnetMask;
    for (const QString& value : values)
        FUZZ_CHECK(text.contains(value) && !value.contains(':') && value == value.trimmed());
    return 0;
}
