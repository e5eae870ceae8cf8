#!/usr/bin/env python3
"""Rules of this tree that no compiler knows. Prints each breach as file:line: reason; exit status 1 when there is one."""
import os
import re
import subprocess
import sys

MAX_LINES = 600
MAX_COLUMNS = 120
CODE = (".cpp", ".h")

# Modules, lowest first: a file may include what stands in its own module or above it in this list.
MODULES = (
    "Modules/QuayLLs/QuayShared/OSAL",
    "Modules/Singletons",
    "Modules/RadioFacts",
    "Modules/QuayLLs/QuayShared/Publisher",
    "Modules/CommonApp",
    "Modules/QuayLLs/QuayOnBoard/Src/Shared/Api/Quay",
    "Modules/QuayFramework/Core/Classes",
    "Modules/QuayFramework/BackEnd/Defs",
    "Modules/SampleFiles",
    "Modules/LumenSA/Kelp",
    "Modules/LumenSA",
    "Modules/QuayCommands",
    "Tools/TRN/TarnKeys",
    "Tools/TRN/TarnFlows/Interface",
    "Tools/TRN/WifiAdcSampling",
    "Tools/TRN/TarnFlows",
    "Tools/TRN/TarnSession",
    "Tools/TRN/TarnMeasure",
    "Tools/TRN/TarnPage",
    "Tools/TRN/TarnServe",
    "Tools/TRN/TarnFormat",
    "Tools/TRN/TarnWorkload",
    "Tools/TRN/QuayListener",
    "Tools/TRN/TarnHost",
)
INCLUDE = re.compile(r'#\s*include\s+"([^"]+)"')
SYSTEM_HEADER = re.compile(
    r"#\s*include\s+<(sys/|arpa/|net/|netinet/|linux/|asm/|unistd|fcntl|dlfcn|poll|pthread|semaphore|signal|spawn|dirent|"
    r"termios|ioctl|netdb|ifaddrs|pwd|grp|sched|ucontext|execinfo|glob|ftw|mntent|syslog|windows)")
# Where system calls may stand: one folder of the operating-system layer for each system, and what never ships.
SYSTEM_FOLDERS = ("Modules/QuayLLs/QuayShared/OSAL/posix/", "tests/", "benchmarks/", "examples/", "fuzz/")


def tracked():
    names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], capture_output=True, text=True, check=True)
    return [name for name in names.stdout.splitlines() if os.path.isfile(name) and name.endswith(CODE)]


def module_of(name):
    """Rank of the deepest module that the file stands in; None outside of all modules."""
    ranks = [rank for rank, folder in enumerate(MODULES) if name.startswith(folder + "/")]
    return max(ranks, key=lambda rank: len(MODULES[rank]), default=None)


def read(name):
    return open(name, encoding="utf-8").read().split("\n")


def check_lines(name, lines):
    if len(lines) > MAX_LINES + 1:
        yield len(lines), f"has over {MAX_LINES} lines: two ideas in one file?"
    for number, line in enumerate(lines, 1):
        if SYSTEM_HEADER.search(line) and not name.startswith(SYSTEM_FOLDERS):
            yield number, "system call outside the operating-system layer"
        if len(line) > MAX_COLUMNS:
            yield number, f"is longer than {MAX_COLUMNS} columns"


class Arrows:
    """Who includes whom, between modules and between the folders of one module."""

    def __init__(self, files):
        self.by_ending = {}
        for name in files:
            parts = name.split("/")
            for start in range(len(parts)):
                self.by_ending.setdefault("/".join(parts[start:]), []).append(name)
        self.folders = {}  # folder -> {folder: (file, line)}

    def check(self, name, lines):
        rank = module_of(name)
        for number, line in enumerate(lines, 1):
            match = INCLUDE.search(line)
            if not match:
                continue
            if match[1].startswith("../"):
                yield number, "includes across folders instead of linking the module"
                continue
            found = [other for other in self.by_ending.get(match[1], []) if other.startswith(("Modules/", "Tools/"))]
            if rank is None or len(found) != 1:
                continue
            target = module_of(found[0])
            if target is not None and target > rank:
                yield number, f"includes upward, from {MODULES[rank]} to {MODULES[target]}"
            here, there = os.path.dirname(name), os.path.dirname(found[0])
            if here != there and not {here, there} & set(MODULES):  # a module's own folder holds its base and its top
                self.folders.setdefault(here, {}).setdefault(there, (name, number))

    def rings(self):
        """Pairs of folders that include each other, by whatever way."""
        reach = {folder: set(targets) for folder, targets in self.folders.items()}
        grown = True
        while grown:
            grown = False
            for targets in reach.values():
                further = set().union(*(reach.get(target, set()) for target in targets)) - targets
                grown = grown or bool(further)
                targets |= further
        for folder, targets in sorted(self.folders.items()):
            for target, (name, number) in sorted(targets.items()):
                if folder in reach.get(target, ()):
                    yield name, number, f"closes a ring between {folder} and {target}"


def main():
    files = tracked()
    arrows = Arrows(files)
    breaches = []
    for name in files:
        try:
            lines = read(name)
        except UnicodeDecodeError:
            breaches.append((name, 1, "is not UTF-8"))
            continue
        breaches += [(name, *breach) for breach in check_lines(name, lines)]
        breaches += [(name, *breach) for breach in arrows.check(name, lines)]
    breaches += arrows.rings()
    for name, number, reason in breaches:
        print(f"{name}:{number}: {reason}", file=sys.stderr)
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main())
