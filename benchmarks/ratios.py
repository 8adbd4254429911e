#!/usr/bin/env python3
"""Prints a table of ratios, ours to each peer, from reports of Google Benchmark.

A benchmark is named Group/Name, a peer Group/Peer_Name. The time of each is the median of its
repetitions.
"""

import json
import sys

# What a ratio must not exceed: (ours, peer) -> limit.
LIMITS = {
    ("Disabled/Level", "Peer_Spdlog"): 1.0,
    ("Disabled/Level", "Peer_qCDebug"): 1.0,
    ("Disabled/Module", "Peer_Spdlog"): 1.0,
    ("Disabled/Module", "Peer_qCDebug"): 1.0,
    ("Line/LogItem", "Peer_Snprintf"): 0.4,
    ("Timestamp/WithinSecond", "Peer_LocaltimeStrftimeSnprintf"): 0.15,
    ("Frame64KiB/Image", "Peer_AllocAndCopy"): 1.2,
    ("SmallFrame/Image", "Peer_FiveByteArrays"): 3.0,
}


def medians(path):
    with open(path, encoding="utf-8") as report:
        runs = json.load(report)["benchmarks"]
    return {
        run["run_name"].split("/repeats:")[0]: run["cpu_time"]
        for run in runs
        if run.get("aggregate_name") == "median"
    }


def main(paths):
    print("| Measured | Beside | Ratio | At most |")
    print("|---|---|---|---|")
    for path in paths:
        times = medians(path)
        for name, time in times.items():
            group, _, case = name.partition("/")
            if case.startswith("Peer_"):
                continue
            for peer, peer_time in times.items():
                peer_group, _, peer_case = peer.partition("/")
                if peer_group != group or not peer_case.startswith("Peer_"):
                    continue
                limit = LIMITS.get((name, peer_case), "")
                print(f"| {name} | {peer_case[5:]} | {time / peer_time:.2f} | {limit} |")


if __name__ == "__main__":
    main(sys.argv[1:])
