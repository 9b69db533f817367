#!/usr/bin/env python3
"""Plants single-line faults at random places and reports which of them the tests notice."""

import argparse
import os
import random
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2]

# The test programs that know a folder, those first that are quick and most likely to notice. The
# longest beginning of a path counts.
PROGRAMS = {
    "fsi": ["module_test", "parser_test", "elements_test"],
    "fsi/xml/elements": ["elements_test", "parser_test", "module_test"],
    "fsi/xml/handlers": ["parser_test", "module_test"],
    "fsi/xml/parsexml": ["parser_test", "module_test", "elements_test"],
    "fsi/xml/sxml": ["module_test", "round_trip_test"],
    "host": ["runtime_test", "elements_test", "parser_test", "module_test"],
    "records/numbers": ["numbers_test", "round_trip_test"],
    "records": ["copybook_test", "layout_test", "round_trip_test"],
    "conversion": ["command_test", "records_library_test"],
    "tools/sxml/cob": ["gnucobol_test"],
    "tools": ["command_test"],
    "gnucobol": ["gnucobol_test"],
}
FOLDERS = ["fsi", "host", "records", "conversion", "tools", "gnucobol"]
NOT_BUILT = re.compile(r"/windows/")
# Words that are in the names of too many tests to choose by.
TOO_COMMON = {"sxml", "command", "gnucobol", "runtime", "module", "test"}
# What the programs load and start.
PRODUCT = ["sxml_command", "sxml_cob"]

# What is put in the place of what. Each keeps the line's syntax in most places.
FAULTS = [
    (r" < ", " <= "),
    (r" <= ", " < "),
    (r" > ", " >= "),
    (r" >= ", " > "),
    (r" == ", " != "),
    (r" != ", " == "),
    (r" && ", " || "),
    (r" \|\| ", " && "),
    (r" \+ ", " - "),
    (r" - ", " + "),
    (r" \+= ", " -= "),
    (r"\+\+", "--"),
    (r"\btrue\b", "false"),
    (r"\bfalse\b", "true"),
    (r"\bif \((?!const|auto)", "if (!"),
    (r"\breturn (?=[a-z_]+\(.*;)", "return !"),
    (r"\b0\b", "1"),
    (r"\b1\b", "2"),
    (r"\bstd::min\b", "std::max"),
    (r"\bstd::max\b", "std::min"),
    (r"^(\s+)[a-z_.>-]+\(.*\);$", r"\1;"),
]
SKIPPED = re.compile(r"^\s*(//|#|static_assert|namespace|using|template|case )|host_trace|trace_")


class Clone:
    """Sources and a build of their own; faults are planted in no other."""

    def __init__(self, folder, preset):
        self.folder = folder
        self.preset = preset
        self.tests = folder / "build" / preset / "tests"
        self.all_tests = {}
        self.limits = {}

    def run(self, words, **options):
        return subprocess.run(words, cwd=self.folder, capture_output=True, text=True,
                              errors="replace", check=False, **options)

    def build(self, targets):
        return self.run(["cmake", "--build", "--preset", self.preset, "--target", *targets])

    def update(self):
        if not self.folder.exists():
            subprocess.run(["git", "clone", "-q", str(SOURCE), str(self.folder)], check=True)
        self.run(["git", "fetch", "-q", str(SOURCE), "HEAD"])
        self.run(["git", "reset", "-q", "--hard", "FETCH_HEAD"])

    def prepare(self, programs):
        if not (self.folder / "build" / self.preset / "build.ninja").exists():
            # Each fault is compiled once, and its absence again: a cache has that.
            cache = [f"-DCMAKE_{language}_COMPILER_LAUNCHER=ccache" for language in ("C", "CXX")]
            # Debug information costs the links more than all else.
            plain = ["-DCMAKE_C_FLAGS_DEBUG=", "-DCMAKE_CXX_FLAGS_DEBUG="]
            self.run(["cmake", "--preset", self.preset, *plain,
                      *(cache if shutil.which("ccache") else [])])
        built = self.build([*PRODUCT, *programs])
        if built.returncode != 0:
            sys.exit("the sources do not build:\n" + built.stdout[-2000:])

    def list_tests(self, program):
        suite = ""
        for line in self.run([str(self.tests / program), "--gtest_list_tests"]).stdout.splitlines():
            if line.startswith(" "):
                yield suite + line.split("#")[0].strip()
            else:
                suite = line.split("#")[0].strip()

    def likely_tests(self, program, file):
        """Those whose names share a word with the file's path: they go first."""
        words = {word.rstrip("s") for word in re.split(r"[/_.]", file.lower()) if len(word) > 3}
        words -= TOO_COMMON
        return [test for test in self.all_tests[program]
                if any(word in test.lower() for word in words)]

    def fails(self, program, limit, tests):
        """Runs tests, on all cores, up to the first that fails."""
        # GoogleTest's own division is in the environment, where tests that start others leave it.
        parts = [tests[i::os.cpu_count()] for i in range(os.cpu_count())]
        running = [subprocess.Popen(
            [str(self.tests / program), "--gtest_fail_fast", "--gtest_filter=" + ":".join(part)],
            cwd=self.folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            for part in parts if part]
        end = time.monotonic() + limit
        try:
            while True:
                if any(each.poll() for each in running):
                    return program
                if all(each.poll() == 0 for each in running):
                    return None
                if time.monotonic() > end:
                    return program + " (it does not end)"
                time.sleep(0.1)
        finally:
            for each in running:
                each.kill()
                each.wait()

    def check(self, programs):
        """Measures each program without a fault. The name of one that fails."""
        for name in programs:
            self.all_tests[name] = list(self.list_tests(name))
            begin = time.monotonic()
            if self.fails(name, 3600, self.all_tests[name]):
                return name
            # Other work may come.
            self.limits[name] = 60 + 10 * (time.monotonic() - begin)
        return None

    def is_noticed(self, programs, file):
        for name in programs:
            if noticed := self.fails(name, self.limits[name], self.likely_tests(name, file)):
                return noticed
        for name in programs:
            if noticed := self.fails(name, self.limits[name], self.all_tests[name]):
                return noticed
        return None


def programs_for(file):
    known = [folder for folder in PROGRAMS if file.startswith(folder + "/")]
    return PROGRAMS[max(known, key=len)]


def places(clone, folders):
    """Each place once, whatever number of faults it may have."""
    for folder in folders:
        for file in sorted((clone.folder / folder).rglob("*.cpp")):
            name = str(file.relative_to(clone.folder))
            if NOT_BUILT.search(name):
                continue
            for number, line in enumerate(file.read_text().split("\n")):
                if SKIPPED.search(line):
                    continue
                faults = [fault for fault in FAULTS if re.search(fault[0], line)]
                if faults:
                    yield name, number, faults


def plant(file, number, fault):
    text = file.read_text()
    lines = text.split("\n")
    before = lines[number]
    lines[number] = re.sub(fault[0], fault[1], before, count=1)
    file.write_text("\n".join(lines))
    return text, before.strip(), lines[number].strip()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--count", type=int, default=50)
    parser.add_argument("--seed", type=int, default=random.randrange(2**31))
    parser.add_argument("--folders", nargs="+", default=FOLDERS, choices=FOLDERS)
    parser.add_argument("--preset", default="debug")
    parser.add_argument("--clone", type=Path, default=SOURCE / "build" / "mutants",
                        help="where the sources are copied to")
    parser.add_argument("--place", action="append", metavar="FILE:LINE",
                        help="plant faults of this line only (may be repeated)")
    options = parser.parse_args()
    print(f"seed {options.seed}", flush=True)
    clone = Clone(options.clone, options.preset)
    clone.update()
    chance = random.Random(options.seed)
    candidates = list(places(clone, options.folders))
    if options.place:
        candidates = [(name, number, [fault]) for name, number, faults in candidates
                      if f"{name}:{number + 1}" in options.place for fault in faults]
    chance.shuffle(candidates)
    # Some faults do not compile.
    candidates = candidates[:2 * options.count]
    needed = sorted({program for each in candidates for program in programs_for(each[0])})
    clone.prepare(needed)
    if failing := clone.check(needed):
        sys.exit(f"{failing} fails without a fault")
    planted = killed = 0
    for name, number, faults in candidates:
        if planted == options.count:
            break
        file = clone.folder / name
        text, before, after = plant(file, number, chance.choice(faults))
        programs = programs_for(name)
        try:
            if clone.build([*PRODUCT, *programs]).returncode != 0:
                continue
            noticed = clone.is_noticed(programs, name)
        finally:
            file.write_text(text)
        planted += 1
        killed += noticed is not None
        print(f"{'noticed ' if noticed else 'SURVIVED'} {name}:{number + 1}: {before}  ->  {after}"
              + (f"  [{noticed}]" if noticed else ""), flush=True)
    print(f"{killed} of {planted} faults were noticed")


if __name__ == "__main__":
    main()
