#!/usr/bin/env python3
"""Static analysis of every unit by clang-tidy, with the flags of the release build. Most of its time goes into headers, so it
takes several units of one target at a time, as one file that includes them. Units that can't stand in one file, since they
give one name to two things, are taken alone.
usage: script/tidy.py UNIT...      prints what it finds; status 1 when there is something"""
import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

BUILD = "build/release"
TOGETHER = 8  # units; more save little, and leave a core idle at the end
# Header-only libraries are all inlined into the unit, and the path analysis would spend its time in their code.
HEAVY = re.compile(r"#include <(nlohmann|CLI|boost)/")
# Our own functions are followed into, the standard library's not, which takes half of the time and finds nothing more.
PATHS = ["-Xclang", "-analyzer-config", "-Xclang", "c++-stdlib-inlining=false,max-nodes=75000"]


def flags_of(command):
    words = shlex.split(command)
    compiler = next(k for k, word in enumerate(words) if os.path.basename(word).startswith(("c++", "g++", "clang++")))
    return tuple(words[compiler + 1 : words.index("-o")])


def findings(units, flags, is_heavy):
    """What clang-tidy says of the units as one file. Included ones would be headers to it, whose paths it doesn't follow."""
    file = f"{BUILD}/tidy/{hashlib.sha1(''.join(units).encode()).hexdigest()}.cpp"
    origins = []  # of each line
    with open(file, "w", encoding="utf-8") as together:
        for unit in units:
            with open(unit, encoding="utf-8") as source:
                lines = source.read().splitlines()
            together.write("\n".join(lines) + "\n")
            origins += [f"{os.path.relpath(unit)}:{number}" for number in range(1, len(lines) + 1)]
    # the compilers' own warnings come from the builds, a unit at a time
    folders = [word for unit in units for word in ("-iquote", os.path.dirname(unit))]
    checks = ["--checks=-clang-analyzer-*"] if is_heavy else []
    ran = subprocess.run(["clang-tidy-14", "--quiet", *checks, file, "--", *flags, *PATHS, *folders, "-Wno-everything"],
                         capture_output=True, text=True, check=False)
    if len(units) > 1 and "[clang-diagnostic-error]" in ran.stdout:
        return [line for unit in units for line in findings([unit], flags, is_heavy)]
    found = [line for line in ran.stdout.splitlines() if re.search(r"(warning|error):", line)]
    if not found and ran.returncode != 0:
        return [f"{units[0]}: {ran.stderr.strip()}"]
    return [re.sub(r"^\S*/tidy/\w+\.cpp:(\d+)", lambda place: origins[int(place[1]) - 1], line) for line in found]


def main():
    with open(f"{BUILD}/compile_commands.json", encoding="utf-8") as database:
        commands = {entry["file"]: entry["command"] for entry in json.load(database)}
    groups = {}
    for unit in map(os.path.abspath, sys.argv[1:]):
        if unit not in commands:
            continue
        with open(unit, encoding="utf-8") as source:
            is_heavy = bool(HEAVY.search(source.read()))
        groups.setdefault((flags_of(commands[unit]), is_heavy), []).append(unit)
    os.makedirs(f"{BUILD}/tidy", exist_ok=True)
    jobs = [(units[k : k + TOGETHER], *key) for key, units in groups.items() for k in range(0, len(units), TOGETHER)]
    jobs.sort(key=lambda job: -len(job[0]))
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        found = {line for lines in pool.map(lambda job: findings(*job), jobs) for line in lines}
    print("\n".join(sorted(found)), end="\n" if found else "")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
