#!/usr/bin/env python3
"""Prints the coverage of each room and writes an HTML report; fails where it is below its floor.

usage: report.py BUILD, in the source folder, after the tests of the preset `coverage`.

What no test can reach is marked in the source with the reason: behind the line, or on lines of its own
before a statement, a block or a function.

    ++left; // not covered: the kernel never reports this

    // not covered: evaluated by the compiler
    constexpr bool codesAreInOrder()
    {
        ...
    }
"""

import collections
import json
import os
import pathlib
import re
import struct
import subprocess
import sys

# The least per cent of lines, branches and MC/DC; None where MC/DC is not asked for. A floor is raised
# when tests reach more, and not lowered. Where there is nothing left to reach it is 100.
FLOORS = {
    "providers": (100, 100, 100),
    "vstring": (100, 100, 100),
    "pdk": (100, 100, 100),
    "command": (100, 100, 100),
    "simulator": (100, 100, None),
}
KINDS = ("lines", "branches", "MC/DC")
MARK = re.compile(r"// not covered: \S")

PROFILE_HEADER = struct.Struct("<16Q")
PROFILE_RECORD_SIZE = 64


def whole_profile(file):
    """A raw profile of a file that counters.c shared: its counters copied to their places."""
    content = file.read_bytes()
    start = content.rindex(b"\x81rforpl\xff")
    (_, version, ids, records, before, counters, after, bitmaps, *_) = PROFILE_HEADER.unpack_from(
        content, start)
    if version & 0xFF != 10:
        sys.exit(f"{file}: raw profiles of version {version & 0xFF} are not known here")
    counters *= 8
    profile = bytearray(content[start:])
    place = PROFILE_HEADER.size + ids + records * PROFILE_RECORD_SIZE + before
    profile[place:place + counters] = content[:counters]
    place += counters + after
    profile[place:place + bitmaps] = content[counters:counters + bitmaps]
    return profile


def merged_profile(build):
    """Merges the counters of all programs into one indexed profile."""
    folder = build / "profiles"
    folder.mkdir(exist_ok=True)
    profiles = []
    for file in (build / "counters").iterdir():
        if file.suffix:
            continue  # of a process that was killed while it made the file
        profiles.append(folder / f"{file.name}.profraw")
        profiles[-1].write_bytes(whole_profile(file))
    merged = build / "coverage.profdata"
    subprocess.run(["llvm-profdata-19", "merge", "-o", merged, *profiles], check=True)
    return merged


class File:
    """What was reached of a source file. Instances of a template count as one."""

    def __init__(self, name):
        self.lines = collections.Counter()  # line: times
        self.branches = collections.Counter()  # (place, outcome): times
        self.conditions = {}  # (place of the decision, number): whether it decided alone
        self.marked = set(marked_lines(pathlib.Path(name).read_text().splitlines()))

    def counts(self):
        """Of each kind (reached, of all); what is marked is left out."""
        return [(len(items) - len(self.missing(items)), len(items))
                for items in map(self.unmarked, (self.lines, self.branches, self.conditions))]

    def unmarked(self, items):
        return {place: count for place, count in items.items() if line_of(place) not in self.marked}

    def missing(self, items):
        return sorted(place for place, count in self.unmarked(items).items() if not count)


def line_of(place):
    while isinstance(place, tuple):
        place = place[0]
    return place


def marked_lines(lines):
    """The lines with a mark, and those of what stands behind a comment with one."""
    waits = False  # for the end of what the mark before it is for
    depth = 0
    for number, line in enumerate(lines, 1):
        marks = bool(MARK.search(line))
        if marks or waits:
            yield number
        if line.lstrip().startswith("//"):
            waits = waits or marks
        elif waits:
            code = line.split("//")[0].rstrip()
            depth += code.count("{") - code.count("}")
            waits = depth > 0 or not code.endswith((";", "}"))


def source_name(name, build):
    """The path of a source from here. Names are relative to the build folder, which is mapped to
    "build", and of rooms are those of links there."""
    inside = name.removeprefix("build/")
    if inside.startswith("build/"):
        inside = f"{build}/" + inside.removeprefix("build/")
    return os.path.relpath(os.path.realpath(inside))


def export(objects, profile, form):
    command = ["llvm-cov-19", "export", f"-format={form}", f"-instr-profile={profile}", objects[0]]
    command += [word for file in objects[1:] for word in ("-object", file)]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def read_lines(files, text):
    for line in text.splitlines():
        kind, _, rest = line.partition(":")
        if kind == "SF":
            file = files(rest)
        elif kind == "DA" and file:
            number, count = rest.split(",")[:2]
            file.lines[int(number)] += int(count)


def read_decisions(files, document):
    for data in document["data"][0]["files"]:
        file = files(data["filename"])
        if not file:
            continue
        for line, column, _, _, taken, not_taken, *_ in data["branches"]:
            file.branches[((line, column), True)] += taken
            file.branches[((line, column), False)] += not_taken
        for line, column, *_, conditions in data["mcdc_records"]:
            for number, decides in enumerate(conditions):
                key = ((line, column), number)
                file.conditions[key] = file.conditions.get(key, False) or decides


def read_coverage(objects, profile, build):
    found = {}

    def files(name):
        name = source_name(name, build)
        if name.split("/")[0] not in FLOORS:
            return None
        if name not in found:
            found[name] = File(name)
        return found[name]

    read_lines(files, export(objects, profile, "lcov"))
    read_decisions(files, json.loads(export(objects, profile, "text")))
    return found


def write_html(objects, profile, build):
    rest = [word for file in objects[1:] for word in ("-object", file)]
    subprocess.run(["llvm-cov-19", "show", "-format=html", f"-output-dir={build}/html",
                    f"-instr-profile={profile}", "-show-branches=count", "-show-mcdc",
                    "-compilation-dir=.", objects[0], *rest],
                   check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def total(files):
    return [tuple(map(sum, zip(*pairs))) for pairs in zip(*(file.counts() for file in files))]


def per_cent(reached, of_all):
    return 100 * reached / of_all if of_all else 100


def row(name, counts):
    cells = "".join(f"{per_cent(*pair):8.2f} {pair[0]:5}/{pair[1]:<5}" for pair in counts)
    return f"{name:<34}{cells}".rstrip()


def print_rooms(found):
    print(f"{'ROOM':<34}" + "".join(f"{kind:>8} {'reached':>7}{'':5}" for kind in KINDS))
    rooms = collections.defaultdict(list)
    for name, file in found.items():
        rooms[os.path.dirname(name)].append(file)
    for room in sorted(rooms):
        print(row(room, total(rooms[room])))


def print_missing(found):
    for name, file in sorted(found.items()):
        for kind, items in zip(KINDS, (file.lines, file.branches, file.conditions)):
            for place in file.missing(items):
                column = f":{place[0][1]}" if isinstance(place, tuple) else ""
                which = f" {place[1]}" if isinstance(place, tuple) else ""
                print(f"{name}:{line_of(place)}{column}: {kind}{which} not reached")


def below_floor(found):
    """Prints each part's total; whether one is below its floor."""
    failed = False
    for part, floors in FLOORS.items():
        counts = total([file for name, file in found.items() if name.split("/")[0] == part])
        print(row(part + "/", counts))
        for kind, pair, floor in zip(KINDS, counts, floors):
            if floor is not None and per_cent(*pair) < floor:
                print(f"{part}/: {kind} are below {floor} %", file=sys.stderr)
                failed = True
    return failed


def main():
    build = pathlib.Path(sys.argv[1])
    profile = merged_profile(build)
    objects = [*build.glob("lib*/libdmpclaim.so"), *sorted(build.glob("lib*/libze*.so")),
               build / "bin/dmpclaim", build / "simulator/tools/kodmpadm"]
    found = read_coverage(objects, profile, build)
    write_html(objects, profile, build)
    print_missing(found)
    print_rooms(found)
    failed = below_floor(found)
    print(f"HTML: {build}/html/index.html")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
