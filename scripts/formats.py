#!/usr/bin/env python3
"""Writes the tables of docs/formats/*.md from the schemas of the documents.

    scripts/formats.py            replaces the tables
    scripts/formats.py --check    changes nothing; exit code 1 when a table is outdated

A table stands between two marks:

    <!-- table: scenario Emitter -->      the element or type "Emitter" of scenario.xsd
    <!-- table: scenario values -->       the types of the values in scenario.xsd
    <!-- end of table -->

Every element and type of a schema must have its table on one of the pages. A type that
several schemas define in the same way needs only one.
"""

import re
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
SCHEMAS = ROOT / "simulation" / "simulationdata" / "schemas"
PAGES = ROOT / "docs" / "formats"

XS = "{http://www.w3.org/2001/XMLSchema}"
MARK = re.compile(r"^<!-- table: (\w+) (\w+) -->\n(.*?)^<!-- end of table -->$", re.MULTILINE | re.DOTALL)
HEADING = re.compile(r"^#+ (.+)$", re.MULTILINE)
PARTS = re.compile(r"\s*\b(Unit|Range|Special|Default): ")
VALUES = "values"  # the mark of the table of value types

# Where schemas share a type, the first of these that shows it has the table.
ORDER = ["scenario", "deployment", "signalpackage", "command"]

BUILT_IN = {
    "xs:string": "text",
    "xs:token": "text",
    "xs:double": "number",
    "xs:int": "whole number, 32 bits",
    "xs:unsignedInt": "whole number, 32 bits",
    "xs:long": "whole number, 64 bits",
    "xs:unsignedLong": "whole number, 64 bits",
    "xs:dateTime": "date and time, ISO 8601",
}


class Failure(Exception):
    """What is wrong with a page or a schema, for the user."""


class Schema:
    """The named elements and types of one schema."""

    def __init__(self, name):
        self.name = name
        self.records = {}  # by name: elements and types with children or attributes
        self.values = {}  # by name: types of text
        self.groups = {}  # by name
        kinds = {"complexType": self.records, "element": self.records, "simpleType": self.values,
                 "group": self.groups}
        for node in ElementTree.parse(SCHEMAS / f"{name}.xsd").getroot():
            kind = kinds.get(node.tag.removeprefix(XS))
            if kind is not None:
                kind[node.get("name")] = node

    def definition(self, name):
        """The text of a type, to compare it with that of another schema."""
        node = self.values.get(name, self.records.get(name))
        return None if node is None else ElementTree.canonicalize(ElementTree.tostring(node), strip_text=True)


def documentation(node):
    text = node.findtext(f"{XS}annotation/{XS}documentation") or ""
    return " ".join(text.split())


def described(node):
    """The meaning, and the parts "Unit", "Range", "Special" and "Default", of a description."""
    pieces = PARTS.split(documentation(node))
    parts = {pieces[i]: pieces[i + 1].strip().rstrip(".") for i in range(1, len(pieces), 2)}
    return pieces[0].strip(), parts


def choices(node):
    """The values that a type enumerates, each with its description."""
    return [(value.get("value"), documentation(value)) for value in node.iter(XS + "enumeration")]


class Row:
    """One element or attribute of a record."""

    def __init__(self, name, node, kind, written):
        self.name = name
        self.node = node
        self.kind = kind
        self.written = written


def attribute_rows(schema, content, owner=""):
    kind = f"attribute of `{owner}`" if owner else "attribute"
    rows = []
    for node in content.findall(XS + "attribute"):
        written = "always" if node.get("use") == "required" else "if set"
        rows.append(Row(node.get("name"), node, kind, written))
    return rows


def element_rows(schema, content, in_choice=False):
    rows = []
    for node in content:
        if node.tag == XS + "group":
            rows += element_rows(schema, schema.groups[node.get("ref")], in_choice)
        elif node.tag in (XS + "sequence", XS + "all"):
            rows += element_rows(schema, node, in_choice)
        elif node.tag == XS + "choice":
            repeated = node.get("maxOccurs") == "unbounded"
            alternatives = element_rows(schema, node, not repeated)
            for row in alternatives:
                row.written = "any number" if repeated and row.kind == "element" else row.written
            rows += alternatives
        elif node.tag == XS + "element":
            rows.append(Row(node.get("name") or node.get("ref"), node, "element", occurrence(node, in_choice)))
            inline = node.find(f"{XS}complexType")
            if inline is not None:
                rows += inline_rows(schema, inline, rows[-1].name)
    return rows


def inline_rows(schema, inline, owner):
    extension = inline.find(f"{XS}simpleContent/{XS}extension")
    rows = attribute_rows(schema, inline if extension is None else extension, owner)
    children = element_rows(schema, inline)
    for row in children:
        row.kind = f"{row.kind} in `{owner}`" if row.kind == "element" else row.kind
    return rows + children


def occurrence(node, in_choice):
    if node.get("maxOccurs") == "unbounded":
        return "one or more" if node.get("minOccurs", "1") != "0" else "any number"
    if in_choice:
        return "one of these"
    return "always" if node.get("minOccurs", "1") != "0" else "if set"


def record_rows(schema, node):
    """The attributes and children that an element or type has beside those of its base."""
    if node.tag == XS + "element":
        node = node.find(XS + "complexType")
    extension = node.find(f"{XS}complexContent/{XS}extension")
    content = node if extension is None else extension
    return attribute_rows(schema, content) + element_rows(schema, content)


def base_of(node):
    extension = node.find(f"{XS}complexContent/{XS}extension")
    return None if extension is None else extension.get("base")


class Pages:
    """The pages, and where each schema's elements and types have their tables."""

    def __init__(self, schemas):
        self.schemas = schemas
        self.texts = {path: path.read_text(encoding="utf-8") for path in sorted(PAGES.glob("*.md"))}
        self.places = {}  # (schema, name): (page, anchor)
        for path, text in self.texts.items():
            marks = list(MARK.finditer(text))
            if len(marks) != text.count("<!-- table:"):
                raise Failure(f"{path.name}: a mark of a table is misspelt or has no end")
            for mark in marks:
                self.places[mark[1], mark[2]] = (path, anchor_before(text, mark.start()))

    def home(self, schema, name):
        """The first schema with a table for the same definition; None without one.

        Several schemas define the position of an object, for example.
        """
        definition = schema.definition(name)
        for other in self.schemas.values():
            mark = VALUES if name in other.values else name
            if (other.name, mark) in self.places and other.definition(name) == definition:
                return other
        return None

    def link(self, schema, name, page):
        home = self.home(schema, name)
        if home is None:
            return name
        target, anchor = self.places[home.name, VALUES if name in home.values else name]
        return f"[{name}]({'' if target == page else target.name}#{anchor})"


def anchor_before(text, position):
    headings = [match for match in HEADING.finditer(text, 0, position)]
    if not headings:
        raise Failure("a table stands before the first heading")
    title = re.sub(r"[^\w\- ]", "", headings[-1][1].lower())
    return title.strip().replace(" ", "-")


def type_of(schema, row, pages, page):
    """The type of a row as Markdown, and the node that restricts its values."""
    name = row.node.get("type") or row.node.get("ref")
    simple = row.node.find(XS + "simpleType")
    if name is None and simple is not None:
        base = simple.find(XS + "restriction").get("base")
        return BUILT_IN.get(base, base), simple
    if name is None:
        extension = row.node.find(f"{XS}complexType/{XS}simpleContent/{XS}extension")
        if extension is None:
            return "", row.node
        name = extension.get("base")
    if name in BUILT_IN:
        return BUILT_IN[name], row.node
    return pages.link(schema, name, page), schema.values.get(name, row.node)


def cell(text):
    return text.replace("|", "\\|").strip()


def table(header, rows):
    lines = ["| " + " | ".join(header) + " |", "|" + "---|" * len(header)]
    lines += ["| " + " | ".join(cell(text) for text in row) + " |" for row in rows]
    return "\n".join(lines) + "\n"


def record_table(schema, name, pages, page):
    rows = []
    for row in record_rows(schema, schema.records[name]):
        meaning, parts = described(row.node)
        shown_type, restriction = type_of(schema, row, pages, page)
        value_range = "; ".join(filter(None, [parts.get("Range", ""), parts.get("Special", "")]))
        if not value_range:
            value_range = ", ".join(f"`{value}`" for value, _ in choices(restriction))
        unit = parts.get("Unit", "")
        rows.append([f"`{row.name}`", row.kind, row.written, shown_type, "" if unit == "none" else unit,
                     value_range, parts.get("Default", ""), meaning])
    base = base_of(schema.records[name])
    lead = f"All of {pages.link(schema, base, page)}, and:\n\n" if base else ""
    return lead + table(["name", "what", "written", "type", "unit", "range", "default", "meaning"], rows)


def value_table(schema, pages):
    rows = []
    for name, node in schema.values.items():
        if pages.home(schema, name) is not schema:
            continue
        meaning, _ = described(node)
        listed = [f"`{value}`" + (f": {text[0].lower()}{text[1:].rstrip('.')}" if text else "")
                  for value, text in choices(node)]
        rows.append([name, "; ".join(listed), meaning])
    return table(["type", "values", "meaning"], rows)


def check_complete(pages):
    for schema in pages.schemas.values():
        named = [name for name, node in schema.records.items() if record_rows(schema, node)]
        missing = [name for name in [*named, *schema.values] if pages.home(schema, name) is None]
        if missing:
            raise Failure(f"no page in docs/formats has a table for {', '.join(missing)} of {schema.name}.xsd: "
                          "add its marks, or define it as another schema does")


def replaced(text, page, pages):
    def write(mark):
        schema = pages.schemas.get(mark[1])
        if schema is None or mark[2] not in {VALUES, *schema.records}:
            raise Failure(f"{page.name}: there is no {mark[2]} in {mark[1]}.xsd")
        content = value_table(schema, pages) if mark[2] == VALUES else record_table(schema, mark[2], pages, page)
        return f"<!-- table: {mark[1]} {mark[2]} -->\n{content}<!-- end of table -->"

    return MARK.sub(write, text)


def run(check):
    found = [path.stem for path in sorted(SCHEMAS.glob("*.xsd"))]
    names = [name for name in ORDER if name in found] + [name for name in found if name not in ORDER]
    if not names:
        raise Failure(f"there are no schemas in {SCHEMAS.relative_to(ROOT)}")
    pages = Pages({name: Schema(name) for name in names})
    check_complete(pages)
    outdated = []
    for page, text in pages.texts.items():
        new = replaced(text, page, pages)
        if new != text:
            outdated.append(page.name)
            if not check:
                page.write_text(new, encoding="utf-8")
    if check and outdated:
        raise Failure(f"outdated tables in {', '.join(outdated)}: run scripts/formats.py")


def main():
    arguments = sys.argv[1:]
    if arguments not in ([], ["--check"]):
        print(__doc__, file=sys.stderr)
        return 2
    try:
        run(check=bool(arguments))
    except Failure as failure:
        print(f"formats.py: {failure}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
