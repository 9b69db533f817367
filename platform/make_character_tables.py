#!/usr/bin/env python3
"""Makes character_tables.inc from what iconv knows:  platform/make_character_tables.py > platform/character_tables.inc"""

import subprocess

SETS = (
    [f"ISO-8859-{part}" for part in (*range(1, 12), *range(13, 17))]
    + [f"CP{page}" for page in range(1250, 1259)]
    + ["KOI8-R", "KOI8-U", "IBM437", "IBM850", "IBM852", "IBM858", "ASCII"]
    + [f"IBM{page}" for page in ("037", 273, 277, 278, 280, 284, 285, 297, 500, 871, 875, 1026, 1047)]
    + [f"IBM{page}" for page in range(1140, 1150)]
)
UNDEFINED = 0xFFFF


def character(name, byte):
    """The character of a byte, UNDEFINED for none."""
    done = subprocess.run(["iconv", "-f", name, "-t", "UTF-32LE"], input=bytes([byte]), capture_output=True)
    return int.from_bytes(done.stdout, "little") if done.returncode == 0 else UNDEFINED


def aliases(name):
    """Other names of a set that iconv has, too."""
    candidates = []
    if name.startswith("IBM"):
        page = name[3:]
        candidates = [f"CP{page}", f"IBM-{page}", page, f"EBCDIC-CP-{page}", f"CP{page:0>5}", f"IBM{page:0>5}"]
    elif name.startswith("CP125"):
        candidates = [f"WINDOWS-{name[2:]}", f"MS-{name[2:]}"]
    elif name.startswith("ISO-8859-"):
        part = name[9:]
        candidates = [f"ISO8859-{part}", f"ISO_8859-{part}", f"8859_{part}"]
        latin = {"1": 1, "2": 2, "3": 3, "4": 4, "9": 5, "10": 6, "13": 7, "14": 8, "15": 9, "16": 10}.get(part)
        candidates += [f"LATIN{latin}", f"L{latin}", f"LATIN-{latin}"] if latin else []
    elif name == "ASCII":
        candidates = ["US-ASCII", "ISO646-US", "ANSI_X3.4-1968"]
    elif name == "KOI8-R":
        candidates = ["CP878"]
    return [other for other in candidates if subprocess.run(["iconv", "-f", other], input=b"", capture_output=True).returncode == 0]


def main():
    print("// Made by make_character_tables.py from what iconv knows; not to be changed by hand.")
    for name in SETS:
        codes = [character(name, byte) for byte in range(256)]
        print(f'CHARACTER_SET("{" ".join([name, *aliases(name)])}",')
        for start in range(0, 256, 12):
            row = ", ".join(f"0x{code:04X}" for code in codes[start : start + 12])
            print(f"    {row}" + ("," if start + 12 < 256 else ")"))


main()
