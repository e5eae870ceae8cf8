#!/usr/bin/env python3
"""Rules of this tree that no compiler knows. Prints each breach as file:line: reason; exit status 1 when there is one."""
import os
import re
import subprocess
import sys

MAX_LINES = 600
INCLUDE_UP = re.compile(r'#\s*include\s+"\.\./')
SYSTEM_HEADER = re.compile(r"#\s*include\s+<(sys/|unistd|fcntl|dlfcn|pthread|semaphore|signal|termios|windows)")
# Where system headers may stand: the operating-system layer, the host (terminal, loader), tests, benchmarks, examples.
SYSTEM_FOLDERS = ("Modules/QuayLLs/QuayShared/OSAL/", "Tools/TRN/TarnHost/", "tests/", "benchmarks/", "examples/")
CODE = (".cpp", ".h")
TEXT = CODE + (".md", ".py", ".txt", ".cmake", ".json", ".1", ".sh", ".ts", ".css", ".html", "")


def tracked():
    names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], capture_output=True, text=True, check=True)
    return [name for name in names.stdout.splitlines() if os.path.isfile(name)]


def check(name):
    extension = os.path.splitext(name)[1]
    if extension not in TEXT:
        return
    try:
        lines = open(name, encoding="utf-8").read().split("\n")
    except UnicodeDecodeError:
        yield 1, "is not UTF-8"
        return
    if extension in CODE and len(lines) > MAX_LINES + 1:
        yield len(lines), f"has over {MAX_LINES} lines: two ideas in one file?"
    for number, line in enumerate(lines, 1):
        if extension in CODE:
            if INCLUDE_UP.search(line):
                yield number, "includes across folders instead of linking the module"
            if SYSTEM_HEADER.search(line) and not name.startswith(SYSTEM_FOLDERS):
                yield number, "system call outside the operating-system layer"
            if len(line) > 120:
                yield number, "is longer than 120 columns"


def main():
    breaches = [(name, number, reason) for name in tracked() for number, reason in check(name)]
    for name, number, reason in breaches:
        print(f"{name}:{number}: {reason}", file=sys.stderr)
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main())
