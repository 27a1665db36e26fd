#!/usr/bin/python3
"""Puts the page together: one HTML file that loads nothing.

usage: assemble.py PROGRAM FINDINGS LICENCES VERSION OUTPUT
PROGRAM is Emscripten's JavaScript, FINDINGS docs/findings.md, LICENCES THIRD-PARTY.md, VERSION words about the page.
"""
import base64
import hashlib
import html
import json
import pathlib
import re
import sys

folder = pathlib.Path(__file__).parent


def read(path):
    try:
        return pathlib.Path(path).read_text(encoding="utf-8")
    except OSError as error:
        sys.exit(f"assemble.py: {path}: {error.strerror}")


def plain(markdown):
    """A line without its marks for code, emphasis and links."""
    return re.sub(r"`|\*\*|\\(?=\|)", "", re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", markdown)).strip()


def cells(row):
    return re.split(r"(?<!\\)\|", row.strip()[1:-1])


def explanations(markdown):
    """The rows '| `code` | meaning | mending |' of all tables."""
    rows = [cells(line) for line in markdown.splitlines() if line.startswith("| `")]
    if not rows or any(len(row) != 3 for row in rows):
        sys.exit("assemble.py: the findings have no table with three columns")
    return {code: parts for code, *parts in ([plain(cell) for cell in row] for row in rows)}


def row_of(line, tag):
    return "<tr>" + "".join(f"<{tag}>{html.escape(plain(cell))}</{tag}>" for cell in cells(line)) + "</tr>"


def as_html(markdown):
    """Headings and tables; of any other text, the paragraphs."""
    result = []
    for block in re.split(r"\n\n+", re.sub(r"^(```.*\n|> ?)", "", markdown, flags=re.M).strip()):
        if block.startswith("|"):
            head, _, *rows = block.splitlines()
            result.append("<table>" + row_of(head, "th") + "".join(row_of(row, "td") for row in rows) + "</table>")
        else:
            tag = "h3" if block.startswith("#") else "p"
            text = re.sub(r"\n(?!- )", " ", plain(block.lstrip("# ")))
            result.append(f"<{tag}>{html.escape(text)}</{tag}>")
    return "\n".join(result)


def for_script(text):
    """Nothing in a script element may look like its end."""
    return re.sub(r"<(?=/script|!--)", r"\\x3c", text, flags=re.I)


def source_of(text):
    return "'sha256-" + base64.b64encode(hashlib.sha256(text.encode()).digest()).decode() + "'"


program, findings, licences, version, output = sys.argv[1:]
style = read(folder / "page.css")
script = for_script(read(folder / "page.js"))
parts = {
    "policy": f"default-src 'none'; script-src {source_of(script)} 'wasm-unsafe-eval'; worker-src blob:; "
              f"style-src {source_of(style)}; img-src blob:; base-uri 'none'; form-action 'none'",
    "style": style,
    "script": script,
    "worker": for_script(read(program) + read(folder / "worker.js")),
    "explanations": json.dumps(explanations(read(findings)), ensure_ascii=False).replace("<", "\\u003c"),
    "licences": as_html(read(licences)),
    "version": html.escape(version),
}
page = re.sub(r"\{\{(\w+)\}\}", lambda match: parts[match[1]], read(folder / "page.html"))
pathlib.Path(output).write_text(page, encoding="utf-8", newline="\n")
