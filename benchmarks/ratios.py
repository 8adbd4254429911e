#!/usr/bin/env python3
"""Prints a table of ratios, ours to each peer, from reports of Google Benchmark.

A benchmark is named Group/Name, a peer Group/Peer_Name. The time of each is the median of its
repetitions. A peer that comes from a package is shown with the version of the package.
"""

import json
import re
import subprocess
import sys

# What a ratio must not exceed: (ours, peer) -> limit.
LIMITS = {
    ("Disabled/Level", "Peer_Spdlog"): 1.0,
    ("Disabled/Level", "Peer_qCDebug"): 1.0,
    ("Disabled/Module", "Peer_Spdlog"): 1.0,
    ("Disabled/Module", "Peer_qCDebug"): 1.0,
    ("Line/LogItem", "Peer_Snprintf"): 0.4,
    ("Timestamp/WithinSecond", "Peer_LocaltimeStrftimeSnprintf"): 0.15,
    ("LogFile/Line", "Peer_SpdlogSizeAndFlush"): 0.6,
    ("LogFile/Line", "Peer_Spdlog"): 1.6,
    ("LogFile/Line", "Peer_Glog"): 0.5,
    ("LogFile/Line", "Peer_QtHandlerToQFile"): 0.5,
    ("LogFile/Line", "Peer_FloorFstatAndWrite"): 1.6,
    ("LogFileThreads/FourThreads", "Peer_OneThread"): 1.67,
    ("Frame64KiB/Image", "Peer_AllocAndCopy"): 1.2,
    ("SmallFrame/Image", "Peer_FiveByteArrays"): 3.0,
    ("FrameReader/Cut", "Peer_ReadIntoBuffer"): 1.43,
    **{
        (f"{way}{law}{seconds}s/AudioUtils", "Peer_Libavcodec"): 1.0
        for way in ("Expand", "Compress")
        for law in ("MuLaw", "ALaw")
        for seconds in (1, 10, 60, 600)
    },
    **{
        (f"DiffMapStep{step}/{way}", "Peer_BitByBit"): 0.25
        for step in (2, 4, 8, 15)
        for way in ("MotionUtils", "MotionUtilsChecked")
    },
    ("Zoom/DisplayGeometry", "Peer_Unlimited"): 3.0,
    ("AddOffset/DisplayGeometry", "Peer_Unlimited"): 4.0,
    **{(f"Keystream{size}/BlowfishECB", "Peer_BfOfb64"): 1.05 for size in ("1KiB", "64KiB", "1MiB")},
    **{
        (f"Base64Of{size}/Base64", "Peer_EvpEncodeBlock"): 1.0
        for size in ("6B", "18B", "1KiB", "1MiB")
    },
    ("Reply5MB/XmlResponse", "Peer_SetContent"): 1.3,
    ("GetAll/20000Children", "Peer_10000Children"): 2.4,
    ("GetText/FourLevels", "Peer_Pugixml"): 3.0,
    ("SortAddresses/Sort", "Peer_LessThan"): 0.05,
    ("EncodeMask/MotionUtils", "Peer_Zlib1"): 0.5,
    ("DecodeMask/MotionUtils", "Peer_Zlib1"): 0.5,
}

# How a peer is shown, and the pkg-config module whose version fills the gap.
PEERS = {
    "BfOfb64": ("BF_ofb64_encrypt of libcrypto {}", "libcrypto"),
    "EvpEncodeBlock": ("EVP_EncodeBlock of libcrypto {}", "libcrypto"),
    "Glog": ("glog {}", "libglog"),
    "Libavcodec": ("libavcodec {}", "libavcodec"),
    "Pugixml": ("pugixml {}", "pugixml"),
    "QtHandlerToQFile": ("QFile behind a handler of Qt {}", "Qt6Core"),
    "SetContent": ("QDomDocument::setContent of Qt {}", "Qt6Xml"),
    "Spdlog": ("spdlog {}", "spdlog"),
    "SpdlogSizeAndFlush": ("spdlog {}, size checked and flushed", "spdlog"),
    "Zlib1": ("zlib {}, level 1", "zlib"),
    "qCDebug": ("qCDebug of Qt {}", "Qt6Core"),
}

# What Google Benchmark adds to a name.
SUFFIXES = re.compile(r"/(real_time|threads:\d+|iterations:\d+|repeats:\d+)")


def read(path):
    """Median time by name, and the counters of those that report any."""
    with open(path, encoding="utf-8") as report:
        runs = json.load(report)["benchmarks"]
    times, counters = {}, {}
    for run in runs:
        if run.get("aggregate_name") != "median":
            continue
        name = SUFFIXES.sub("", run["run_name"])
        times[name] = run["real_time" if "real_time" in run["run_name"] else "cpu_time"]
        counters[name] = {
            key: value
            for key, value in run.items()
            if key.endswith(("_ns", "_KiB", "_per_ns"))
        }
    return times, counters


def shown(peer):
    if peer not in PEERS:
        return peer
    name, module = PEERS[peer]
    found = subprocess.run(["pkg-config", "--modversion", module], capture_output=True, text=True)
    return name.format(found.stdout.strip())


def main(paths):
    remarks = []
    print("| Measured | Beside | Ratio | At most |")
    print("|---|---|---|---|")
    for path in paths:
        times, counters = read(path)
        for name, time in sorted(times.items()):
            group, _, case = name.partition("/")
            if case.startswith("Peer_"):
                continue
            for peer, peer_time in sorted(times.items()):
                peer_group, _, peer_case = peer.partition("/")
                if peer_group != group or not peer_case.startswith("Peer_"):
                    continue
                limit = LIMITS.get((name, peer_case), "")
                print(f"| {name} | {shown(peer_case[5:])} | {time / peer_time:.2f} | {limit} |")
            remarks += [f"{name}: {key} {value:.4g}" for key, value in counters[name].items()]
    if remarks:
        print()
        print("\n".join(remarks))


if __name__ == "__main__":
    main(sys.argv[1:])
