"""Markdown, as far as the pages use it, to roff for man."""
import re
import textwrap


def escape(text):
    """Text as roff prints it."""
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return "\\&" + text if text.startswith((".", "'")) else text


def inline(text):
    """Text with `code`, **bold** and links."""
    text = re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", text)
    parts = re.split(r"(`[^`]*`|\*\*[^*]*\*\*)", text)
    made = ""
    for part in parts:
        if len(part) > 1 and part[0] in "`*":
            made += "\\fB" + escape(part.strip("`*")).removeprefix("\\&") + "\\fR"
        else:
            made += escape(part).removeprefix("\\&")
    return "\\&" + made if made.startswith((".", "'")) else made


def wrapped(lines):
    """The same, wrapped to lines of moderate length; lines that stay as they are are not wrapped."""
    made, is_literal = [], False
    for line in lines:
        is_literal = {".nf": True, ".fi": False}.get(line, is_literal)
        if is_literal or line.startswith("."):
            made.append(line)
        else:
            pieces = textwrap.wrap(line, 78, break_long_words=False, break_on_hyphens=False) or [line]
            made += [piece if i == 0 or piece[0] not in ".'" else "\\&" + piece for i, piece in enumerate(pieces)]
    return made


def literal(text):
    """Lines that stay as they are."""
    lines = [escape(line) if line else "\\&" for line in text.rstrip("\n").split("\n")]
    return [".PP", ".RS 4", ".nf", *lines, ".fi", ".RE"]


def table(rows):
    """A table as a list: the first column is what each entry is about."""
    header, entries = rows[0], rows[2:]
    made = []
    for cells in entries:
        made += [".TP", inline(cells[0])]
        details = [cell for cell in cells[1:] if cell]
        if len(header) > 2:
            named = zip(header[1:], cells[1:])
            details = [f"{name}: {cell}" if name else cell for name, cell in named if cell]
        made.append(inline("; ".join(details)) or "\\&")
    return made + [".PP"]


def from_markdown(text):
    """The lines of roff for the body of a section."""
    made = []
    lines = text.split("\n")
    at = 0
    paragraph = []
    macro = ".PP"

    def end_paragraph():
        nonlocal paragraph, macro
        if paragraph:
            made.extend([macro, inline(" ".join(paragraph))])
        paragraph, macro = [], ".PP"

    while at < len(lines):
        line = lines[at]
        at += 1
        if line.startswith("```"):
            end_paragraph()
            end = lines.index("```", at)
            made += literal("\n".join(lines[at:end]))
            at = end + 1
        elif line.startswith("    ") and not paragraph:
            block = [line]
            while at < len(lines) and (lines[at].startswith("    ") or not lines[at]):
                block.append(lines[at])
                at += 1
            made += literal("\n".join(entry[4:] for entry in block))
        elif line.startswith("|"):
            end_paragraph()
            rows = [line]
            while at < len(lines) and lines[at].startswith("|"):
                rows.append(lines[at])
                at += 1
            cells = [[cell.strip() for cell in re.split(r"(?<!\\)\|", row.strip()[1:-1])] for row in rows]
            made += table([[cell.replace("\\|", "|") for cell in row] for row in cells])
        elif line.startswith("#"):
            end_paragraph()
            made.append(f'.SS "{inline(line.lstrip("# "))}"')
        elif re.match(r"(- |\d+\. )", line):
            end_paragraph()
            mark, text_of_item = re.match(r"(-|\d+\.) +(.*)", line).groups()
            macro = ".IP \\(bu 2" if mark == "-" else f".IP {mark} 3"
            paragraph = [text_of_item]
        elif not line.strip():
            end_paragraph()
        elif not line.startswith("<!--"):
            paragraph.append(line.strip())
    end_paragraph()
    return made
