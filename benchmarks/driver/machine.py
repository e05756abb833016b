"""Facts about the machine, for those who compare figures."""

import os
import platform
import re
import subprocess


def first_match(file, pattern):
    with open(file, encoding="utf-8") as text:
        found = re.search(pattern, text.read(), re.MULTILINE)
    return found.group(1).strip() if found else "unknown"


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip()


def compiler(build):
    file = first_match(build / "CMakeCache.txt", r"^CMAKE_CXX_COMPILER:\w+=(.*)$")
    flags = first_match(build / "CMakeCache.txt", r"^CMAKE_CXX_FLAGS_RELEASE:\w+=(.*)$")
    return f"{output_of(file, '--version').splitlines()[0]}, {flags}"


def load_average():
    return " ".join(f"{value:.2f}" for value in os.getloadavg())


def describe(build, trees):
    """Pairs of what and its value."""
    processor = first_match("/proc/cpuinfo", r"^model name\s*:(.*)$")
    kib = int(first_match("/proc/meminfo", r"^MemTotal:\s*(\d+)"))
    system = first_match("/etc/os-release", r'^PRETTY_NAME="?([^"\n]*)')
    return [
        ("CPU", f"{processor}, {os.cpu_count()} cores"),
        ("memory", f"{kib / 2**20:.0f} GiB"),
        ("system", f"{system}, kernel {platform.release()}"),
        ("compiler", compiler(build)),
        ("file system", output_of("findmnt", "--noheadings", "--output", "FSTYPE", "--target", str(trees))),
    ]
