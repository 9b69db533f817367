#!/usr/bin/env python3
"""Makes the manual pages and the shells' completions: make_manual.py SXML VERSION DOCS OUT"""
import datetime
import json
import os
import pathlib
import re
import subprocess
import sys

import completions
import roff

MARK = re.compile(r"<!-- manual: (.*) -->")


def marked_sections(docs):
    """The sections of the pages that go into the manual: page of the manual -> [(title, text)], and the
    names of the settings."""
    sections, settings = {}, []
    for page in sorted(docs.glob("*.md")):
        for section in re.split(r"^## ", page.read_text(encoding="utf-8"), flags=re.M)[1:]:
            title, _, text = section.partition("\n")
            mark = MARK.search(text)
            if not mark:
                continue
            for word in mark.group(1).split():
                if word == "settings":
                    settings += re.findall(r"`((?:SXML|4GL)_[A-Z_]+)`", "\n".join(
                        line.split("|")[1] for line in text.split("\n") if line.startswith("| `")))
                else:
                    sections.setdefault(word, []).append((title, text))
    return sections, settings


def date():
    moment = os.environ.get("SOURCE_DATE_EPOCH")
    when = datetime.datetime.fromtimestamp(int(moment), datetime.timezone.utc) if moment else datetime.datetime.now()
    return when.strftime("%Y-%m-%d")


class Page:
    """One page of the manual."""

    def __init__(self, name, section, version, summary):
        self.name, self.section = name, section
        self.lines = [f'.TH {name.upper()} {section} {date()} "sxml {version}" "sxml"',
                      ".SH NAME", f"{roff.escape(name)} \\- {roff.escape(summary)}"]

    def reference(self):
        return f"{roff.escape(self.name)} ({self.section})"

    def heading(self, title, lines):
        if lines and lines[0] == ".PP":
            lines = lines[1:]
        self.lines += [f'.SH "{roff.escape(title.upper())}"', *lines]

    def options(self, options):
        lines = []
        for option in options:
            names = ", ".join("\\fB" + roff.escape(name) + "\\fR" for name in option["names"])
            value = f' \\fI{roff.escape(option["value"])}\\fR' if option["value"] else ""
            lines += [".TP", names + value, roff.inline(sentence(option["help"]))]
        self.heading("Options", lines)

    def marked(self, sections):
        for title, text in sections.get(f"{self.name}.{self.section}", []) + sections.get(f"*.{self.section}", []):
            self.heading(title, roff.from_markdown(text))

    def write(self, folder, others):
        others = [other for other in others if other != self.reference()]
        self.heading("See also", [".BR " + other + (" ," if other != others[-1] else "") for other in others])
        text = re.sub(r"\n\.PP(?=\n\.(?:SH|SS|PP|TP|IP))", "", "\n".join(roff.wrapped(self.lines)))
        text = re.sub(r"(\n\.S[HS] .*)\n\.PP(?=\n)", r"\1", text)
        (folder / f"{self.name}.{self.section}").write_text(text + "\n", encoding="utf-8")


def sentence(text):
    """As a sentence of its own."""
    text = text[0].upper() + text[1:] if not text.startswith("http") else text
    return text if text.endswith((".", "...")) else text + "."


def footer_parts(footer):
    """The text below the options, and the examples."""
    before, _, examples = footer.partition("Example:\n")
    examples = "\n".join(line.removeprefix("  ") for line in examples.rstrip().split("\n"))
    return before.strip(), examples


def synopsis(command):
    words = ["\\fBsxml " + roff.escape(command["name"]) + "\\fR", "[\\fIOPTIONS\\fR]"]
    if command["hands_on"]:
        words.append("\\fIPROGRAM\\fR ...")
    words += ["\\fI" + roff.escape(one["name"]) + "\\fR" for one in command["positionals"]]
    return [" ".join(words)]


def subcommand_page(command, version, sections):
    page = Page("sxml-" + command["name"], 1, version, command["help"])
    page.heading("Synopsis", synopsis(command))
    said, examples = footer_parts(command["footer"])
    lines = [roff.inline(sentence(command["help"]))]
    for paragraph in filter(None, said.split("\n\n")):
        lines += [".PP", roff.inline(paragraph.replace("\n", " "))]
    for one in command["positionals"]:
        lines += [".TP", "\\fI" + roff.escape(one["name"]) + "\\fR", roff.inline(sentence(one["help"]))]
    page.heading("Description", lines)
    page.options(command["options"])
    page.marked(sections)
    if examples:
        page.heading("Examples", roff.literal(examples))
    return page


def command_page(description, version, sections):
    page = Page("sxml", 1, version, description["help"].rstrip("."))
    page.heading("Synopsis", ["\\fBsxml\\fR \\fISUBCOMMAND\\fR [\\fIOPTIONS\\fR] ..."])
    lines = [roff.inline(sentence(description["help"])), ".PP", "The subcommands, each with a page of its own:"]
    for command in description["subcommands"]:
        lines += [".TP", f'\\fB{roff.escape(command["name"])}\\fR', roff.inline(sentence(command["help"]))]
    page.heading("Description", lines)
    page.options(description["options"])
    page.marked(sections)
    return page


def settings_page(version, sections):
    page = Page("sxml-settings", 5, version, "settings and environment variables of sxml")
    page.heading("Description", [roff.inline(
        "Settings say how documents are written and read. They are given with `--set` NAME=VALUE, as environment "
        "variables, or in the settings file that `SXML_CONFIG` names, in this order of precedence.")])
    page.marked(sections)
    return page


def main(sxml, version, docs, out):
    described = subprocess.run([sxml, "--describe"], check=True, capture_output=True, text=True)
    description = json.loads(described.stdout)
    sections, settings = marked_sections(pathlib.Path(docs))
    folder = pathlib.Path(out)
    folder.mkdir(parents=True, exist_ok=True)
    pages = [command_page(description, version, sections)]
    pages += [subcommand_page(command, version, sections) for command in description["subcommands"]]
    pages.append(settings_page(version, sections))
    for page in pages:
        page.write(folder, [other.reference() for other in pages])
    for name, script in (("sxml.bash", completions.bash), ("_sxml", completions.zsh), ("sxml.fish", completions.fish)):
        (folder / name).write_text(script(description, settings), encoding="utf-8")


if __name__ == "__main__":
    if len(sys.argv) != 5:
        sys.exit("usage: make_manual.py SXML VERSION DOCS OUT")
    main(*sys.argv[1:])
