#!/usr/bin/env python3
"""Runs clang-tidy over sources, many of them joined in one unit.

Nearly all that clang-tidy does for one source is to go through the headers of Qt, so sources that
share no name of their own are read together, after the headers once. Where a unit doesn't compile
all the same, its sources are read one by one; so are few sources, by which one is found that misses
an include. Findings name the true files and lines.

    scripts/tidy.py BUILD_FOLDER SOURCE...
"""
import concurrent.futures
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

FEW = 16
MOST_IN_A_UNIT = 16
ENTRIES = ("main", "LLVMFuzzerTestOneInput")  # which every program has
ROOT = pathlib.Path(__file__).resolve().parent.parent
OURS = rf"^{re.escape(str(ROOT))}/(src|tests|benchmarks|simulator|demo|fuzz)/.*"


def flags_of(command):
    """Definitions and folders of headers of a compile command, without precompiled headers."""
    words = iter(shlex.split(command["command"]))
    definitions, folders = {}, []
    for word in words:
        if word == "-isystem":
            folders.append(("-isystem", next(words)))
        elif word.startswith("-I"):
            folders.append((word,))
        elif word.startswith("-D"):
            name, _, value = word[2:].partition("=")
            definitions[name] = value or "1"
    return definitions, folders


def own_names(text):
    """Names that the source gives at the margin, which another must not give again."""
    names = set()
    for line in re.findall(r"^(?!namespace|template|return)[A-Za-z_].*", text, re.MULTILINE):
        found = re.match(r"(?:struct|class|enum(?: class)?|using|union)\s+(\w+)", line)
        found = found or re.search(r"(\w+(?:::\w+)*)\s*[(={\[;]", line)
        if line.startswith("Q_DECLARE_METATYPE"):
            names.add(line.strip())
        elif found and "::" not in found[1] and not found[1].isupper():
            names.add(found[1])
    return names - set(ENTRIES)


class Unit:
    def __init__(self, top, most):
        self.top = top  # the folder at the root
        self.most = most  # sources
        self.sources, self.names, self.definitions, self.folders = [], set(), {}, []

    def takes(self, top, names, definitions):
        return (top == self.top and len(self.sources) < self.most and not names & self.names
                and all(self.definitions.get(name, value) == value
                        for name, value in definitions.items()))

    def add(self, source, names, definitions, folders):
        self.sources.append(source)
        self.names |= names
        self.definitions.update(definitions)
        self.folders += [folder for folder in folders if folder not in self.folders]


def command_of(source, commands):
    """Its compile command; one that isn't built here has that of the neighbour with most headers."""
    top = source.split("/")[0]
    near = max(commands, key=lambda other: (other.split("/")[0] == top,
                                            commands[other]["command"].count("-isystem")))
    return commands.get(source, commands[near])


def joined(sources, commands):
    units = []
    most = MOST_IN_A_UNIT if len(sources) > FEW else 1
    for source in sources:
        top = source.split("/")[0]
        definitions, folders = flags_of(command_of(source, commands))
        names = own_names((ROOT / source).read_text())
        unit = next((each for each in units if each.takes(top, names, definitions)), None)
        if unit is None:
            units.append(unit := Unit(top, most))
        unit.add(source, names, definitions, folders)
    return units


def write(path, unit):
    """The unit as a source, where each entry of a program has a name of its own."""
    text = ""
    for index, source in enumerate(unit.sources):
        text += "".join(f"#define {entry} {entry}{index}\n" for entry in ENTRIES)
        text += f'#include "{ROOT / source}"\n'
        text += "".join(f"#undef {entry}\n" for entry in ENTRIES)
    path.write_text(text)


def tidy(unit, path):
    """What clang-tidy finds in the unit, and whether that is nothing."""
    write(path, unit)
    flags = [f"-D{name}={value}" for name, value in unit.definitions.items()]
    flags += [word for folder in unit.folders for word in folder]
    # The sources are included here, with an ending that no header has.
    ran = subprocess.run(
        ["clang-tidy", "--quiet", f"--config-file={ROOT / '.clang-tidy'}",
         "--checks=-bugprone-suspicious-include", f"--header-filter={OURS}", str(path), "--",
         "-std=c++17", "-fPIC", "-ffp-contract=off", "-O1", "-Wall", "-Wextra", "-Wpedantic",
         "-Wshadow", "-Wconversion", *flags],
        capture_output=True, text=True, check=False)
    if "clang-diagnostic-error" not in ran.stdout or len(unit.sources) == 1:
        return ran.stdout, ran.returncode == 0
    alone = []
    for source in unit.sources:
        part = Unit(unit.top, 1)
        part.add(source, set(), unit.definitions, unit.folders)
        alone.append(tidy(part, path))
    return "".join(text for text, _ in alone), all(good for _, good in alone)


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    commands = {os.path.relpath(each["file"], ROOT): each
                for each in json.loads((build / "compile_commands.json").read_text())}
    units = joined(sys.argv[2:], commands)
    folder = build / "lint"
    folder.mkdir(exist_ok=True)
    good = True
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        done = pool.map(tidy, units, (folder / f"unit{i}.cpp" for i in range(len(units))))
        for unit, (text, is_good) in zip(units, done):
            print(f"{len(unit.sources)} sources, {unit.sources[0]} to {unit.sources[-1]}")
            print(text, end="", flush=True)
            good = good and is_good
    sys.exit(0 if good else 1)


main()
