#pragma once

#include <pylon/export.h>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

/// @file
/// Facts about a Windows machine, and their readers from what its command-line tools print.
///
/// The readers rely on the layout and the labels of the English tools; of output in another
/// language they take what they recognise. They are pure functions, for any text whatever, and safe
/// on any thread. A value is what stands between the first and the second colon of its line,
/// without the white space around it, so a value with a colon inside is cut there.

namespace pylon {

/// One network adapter, as `ipconfig /all` describes it. What it did not print is empty.
struct NetworkInterface {
    QString name;             ///< Heading, for example "Ethernet adapter Ethernet".
    QString physicalAddress;  ///< For example "00-1A-2B-3C-4D-5E".
    QString ipAddress;        ///< Value labelled "IP Address"; newer systems print other labels.
    QString subnetMask;       ///< For example "255.255.255.0".
};

/// A machine, as `systeminfo` describes it. What it did not print is empty.
struct SystemInfo {
    QString hostName;                 ///< Name in the network.
    QString osName;                   ///< Product name of the operating system.
    QString osVersion;                ///< Version and build.
    QString systemType;               ///< For example "x64-based PC".
    QString productId;                ///< Number of the installation.
    QString bios;                     ///< Maker, version and date of the firmware.
    QStringList processors;           ///< One description each, with its clock.
    QString totalPhysicalMemory;      ///< With its unit, for example "16,262 MB".
    QString availablePhysicalMemory;  ///< What of it was free at that time, with its unit.
};

/// Which lines a text had that the reader finds by their content.
struct SystemInfoFindings {
    bool memory = false;      ///< A line with "MB"; the first one is taken for the total.
    bool processors = false;  ///< A numbered line with a clock in "Mhz".
};

/// Reads the output of `systeminfo`.
/// @param[in,out] info takes the values: processors are added to those it has, each other value
///        replaces the one it has. Where a line is missing, it stays as it is.
PYLON_EXPORT SystemInfoFindings parseSystemInfo(const QString& text, SystemInfo& info);

/// Reads the output of `ipconfig /all`.
/// @return its adapters in order. Of headings less than three lines apart only the first counts.
PYLON_EXPORT std::vector<NetworkInterface> parseNetworkInfo(const QString& text);

}  // namespace pylon
