#!/usr/bin/env python3
"""Compares the processor time and memory of almcfg's commands with those of the bundle's own load, on generated files.

usage: almcfg_scale.py BUILD [LINES [ROUNDS]]

BUILD is a build directory (build/release). Each contestant is a process; they take turns. The shortest time and the largest
memory of the rounds count.
"""

import os
import pathlib
import sys
import tempfile

FILES = {
    "one record each": "Node{0:07}\tPort{0:02}\tAlarm7\t{0}\t{0}\n",
    "three records each": "Node{0:07}/Spare{0:07}/Test{0:07}\tPort{0:02}\tAlarm7\t{0}\t{0}\n",
    "every line with a finding": "Node{0:07}\tPort{0:02}\tAlarm7\t0{0}\t{0}\n",
}


def cost(command):
    """Seconds of processor time and megabytes of the command, which exits 0 or 1."""
    child = os.fork()
    if child == 0:
        null = os.open(os.devnull, os.O_RDWR)
        for stream in range(3):
            os.dup2(null, stream)
        os.execv(command[0], command)
    _, status, usage = os.wait4(child, 0)
    if os.waitstatus_to_exitcode(status) not in (0, 1):
        sys.exit(f"almcfg_scale.py: {' '.join(map(str, command))}: status {status}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024 / 1e6


def extremes(costs):
    return min(time for time, _ in costs), max(memory for _, memory in costs)


def main():
    if len(sys.argv) not in (2, 3, 4):
        sys.exit(__doc__.strip())
    build = pathlib.Path(sys.argv[1])
    lines, rounds = (int(number) for number in (*sys.argv[2:], *("1000000", "3")[len(sys.argv) - 2:]))
    with tempfile.TemporaryDirectory() as directory:
        file = pathlib.Path(directory, "ii_asciiagent_bundle", "AlarmConfig.csv")
        file.parent.mkdir()
        load = [build / "host/bundle_host", "--config-dir", directory, "--bundle", build / "src/libii_ascii_util.so",
                "quit"]
        almcfg = build / "tools/almcfg/almcfg"
        for name, line in FILES.items():
            with file.open("w") as out:  # A large text here would count as memory of the forked commands.
                out.writelines(line.format(i) for i in range(lines))
            size = file.stat().st_size / 1e6
            commands = {"check": [almcfg, "check", file]}
            if name == "one record each":
                commands["show"] = [almcfg, "show", file]
                commands["lookup"] = [almcfg, "lookup", file, "Node0000007", "Port07", "Alarm7", "7"]
                commands["diff"] = [almcfg, "diff", file, file]
            costs = [(cost(load), *map(cost, commands.values())) for _ in range(rounds)]
            (load_time, load_memory), *others = (extremes(side) for side in zip(*costs))
            print(f"{name}: {size:.0f} MB; load {load_time:.2f} s, {load_memory:.0f} MB", flush=True)
            for command, (time, memory) in zip(commands, others):
                print(f"  {command}: {time:.2f} s, {time / load_time:.1f} x the load, {memory:.0f} MB, "
                      f"{memory / size:.1f} x the file", flush=True)


if __name__ == "__main__":
    main()
