#!/usr/bin/env python3
"""Plants single-line faults at random places and tells which of them the tests notice."""

import argparse
import random
import re
import subprocess
import sys
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2]
CLONE = SOURCE / "build" / "mutants"

# The test programs that know a folder, as a pattern for ctest's test names' programs.
PROGRAMS = {
    "fsi": ["module_test", "round_trip_test", "elements_test", "parser_test"],
    "host": ["runtime_test", "module_test", "elements_test", "parser_test"],
    "records": ["copybook_test", "layout_test", "numbers_test"],
    "conversion": ["command_test"],
    "tools": ["command_test"],
    "gnucobol": ["gnucobol_test"],
}

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


def run(words, **options):
    return subprocess.run(words, cwd=CLONE, capture_output=True, text=True, errors="replace",
                          check=False, **options)


def prepare(preset):
    if not CLONE.exists():
        subprocess.run(["git", "clone", "-q", str(SOURCE), str(CLONE)], check=True)
    run(["git", "fetch", "-q", str(SOURCE), "HEAD"])
    run(["git", "reset", "-q", "--hard", "FETCH_HEAD"])
    run(["cmake", "--preset", preset])
    built = run(["cmake", "--build", "--preset", preset])
    if built.returncode != 0:
        sys.exit("the sources do not build:\n" + built.stdout[-2000:])


def places(folders):
    for folder in folders:
        for file in sorted((CLONE / folder).rglob("*.cpp")):
            for number, line in enumerate(file.read_text().split("\n")):
                if SKIPPED.search(line):
                    continue
                for pattern, replacement in FAULTS:
                    if re.search(pattern, line):
                        yield folder, file, number, pattern, replacement


def plant(file, number, pattern, replacement):
    text = file.read_text()
    lines = text.split("\n")
    before = lines[number]
    lines[number] = re.sub(pattern, replacement, before, count=1)
    file.write_text("\n".join(lines))
    return text, before.strip(), lines[number].strip()


def test_programs(folder, build):
    for name in PROGRAMS[folder]:
        for program in sorted((CLONE / build / "tests").glob(name)):
            yield program


def is_noticed(folder, build):
    for program in test_programs(folder, build):
        try:
            if run([str(program), "--gtest_fail_fast"], timeout=300).returncode != 0:
                return True
        except subprocess.TimeoutExpired:
            return True
    return False


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--count", type=int, default=50)
    parser.add_argument("--seed", type=int, default=random.randrange(2**31))
    parser.add_argument("--folders", nargs="+", default=list(PROGRAMS), choices=list(PROGRAMS))
    parser.add_argument("--preset", default="debug")
    options = parser.parse_args()
    print(f"seed {options.seed}", flush=True)
    prepare(options.preset)
    build = f"build/{options.preset}"
    for folder in options.folders:
        if not list(test_programs(folder, build)):
            sys.exit(f"no test program of {folder} was built")
        if is_noticed(folder, build):
            sys.exit(f"the tests of {folder} fail without a fault")
    candidates = list(places(options.folders))
    random.Random(options.seed).shuffle(candidates)
    planted = killed = 0
    for folder, file, number, pattern, replacement in candidates:
        if planted == options.count:
            break
        text, before, after = plant(file, number, pattern, replacement)
        targets = [program.name for program in test_programs(folder, build)]
        targets += ["sxml", "sxml_command"] + (["sxml_cob"] if folder == "gnucobol" else [])
        builds = run(["cmake", "--build", "--preset", options.preset, "--target", *targets])
        if builds.returncode == 0:
            planted += 1
            noticed = is_noticed(folder, build)
            killed += noticed
            place = f"{file.relative_to(CLONE)}:{number + 1}"
            print(f"{'noticed ' if noticed else 'SURVIVED'} {place}: {before}  ->  {after}",
                  flush=True)
        file.write_text(text)
    print(f"{killed} of {planted} faults were noticed")


if __name__ == "__main__":
    main()
