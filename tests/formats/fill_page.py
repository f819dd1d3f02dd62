#!/usr/bin/env python3
"""The tables of a page are those of the readers: fill_page.py [--write] PAGE PROGRAMS

    <!-- keys: DOCUMENT OBJECT -->   the keys of an object of `sfg schema DOCUMENT`, up to <!-- end -->
    <!-- names: LIST -->             `print_names LIST`, up to <!-- end -->

A page with a table of keys has one of every object. PROGRAMS is the folder of the two programs. With --write the
page is brought up to date instead.
"""

import difflib
import json
import pathlib
import re
import subprocess
import sys

DOCUMENTS = ["library", "graph", "environment"]
WAYS = {
    "uniform": "a uniform",
    "varying": "varies over the surface: a parameter of that name",
    "metaSL": "a member of the state that MetaSL code has",
    "light": "what the light gives, in a profile of its name",
}


class Readers:
    def __init__(self, programs):
        self.programs = programs
        self.schemas = {name: json.loads(self.run("sfg", "schema", name)) for name in DOCUMENTS}
        self.shown = set()

    def run(self, program, *arguments):
        return subprocess.run([self.programs / program, *arguments], check=True, text=True, stdout=subprocess.PIPE,
                              timeout=60).stdout

    def objects(self):
        return {name for schema in self.schemas.values() for name in schema["$defs"]}

    def keys(self, document, name):
        self.shown.add(name)
        table = self.schemas[document]["$defs"][name]
        rows = ["| Key | Holds | |", "|---|---|---|"]
        for key, value in table["properties"].items():
            rows.append(f"| `{key}` | {kind_of(value)} | {meaning_of(value)}{duty_of(table, key)} |")
        return rows

    def names(self, name):
        lines = [line.split("\t") for line in self.run("print_names", name).splitlines()]
        if name == "types":
            rows = ["| Type | Also | Numbers | Without a value |", "|---|---|---|---|"]
            for type_name, other, count, value in lines:
                other = "" if other == type_name else f"`{other}`"
                value = f"`{value}`" if value else ""
                rows.append(f"| `{type_name}` | {other} | {count if count != '0' else ''} | {value} |")
            return rows
        rows = ["| State variable | Type | How it reaches the code |", "|---|---|---|"]
        for variable, type_name, way in lines:
            type_name = "" if type_name == "void" else f"`{type_name}`"
            rows.append(f"| `{variable}` | {type_name} | {WAYS[way]} |")
        return rows


def meaning_of(value):
    return value.get("description", "")


def link(reference):
    name = reference.rsplit("/", 1)[1]
    return f"[{name.replace('_', ' ')}](#{name.replace('_', '-')})"


def kind_of(value):
    if "$ref" in value:
        return link(value["$ref"])
    if "enum" in value:
        words = value["enum"]
        return "a [type](#types)" if "float3" in words else ", ".join(f"`{word}`" for word in words)
    if "anyOf" in value:
        return " or ".join(dict.fromkeys(kind_of(choice) for choice in value["anyOf"]))
    kind = value.get("type")
    if kind == "array":
        return {"string": "texts", "number": "numbers"}.get(value["items"].get("type")) or \
            "any number of " + kind_of(value["items"])
    if kind == "object":
        return "by name: " + kind_of(value["additionalProperties"])
    names = {"string": "a text", "number": "a number", "boolean": "`true` or `false`"}
    return names.get(kind, kind or f"text like `{value.get('pattern')}`")


def duty_of(table, key):
    if key in table.get("required", []):
        return " Required."
    choices = [choice["required"] for choice in table.get("oneOf", [])]
    if [key] in choices:
        return " Exactly one of " + ", ".join(f"`{choice[0]}`" for choice in choices) + "."
    choices = [choice["required"] for choice in table.get("anyOf", [])]
    if any(key in choice and len(choice) > 1 for choice in choices):
        return " Required" + "".join(f", unless there is `{other[0]}`" for other in choices if key not in other) + "."
    if key in table.get("then", {}).get("required", []):
        return " Required with that type."
    return ""


def renew(page, readers):
    marked = re.compile(r"^(<!-- (keys|names): ([^\n]*?) -->\n).*?^<!-- end -->$", re.S | re.M)

    def renewed(found):
        rows = getattr(readers, found.group(2))(*found.group(3).split())
        return found.group(1) + "\n" + "\n".join(rows) + "\n\n<!-- end -->"

    return marked.sub(renewed, page)


def main():
    arguments = sys.argv[1:]
    wants_write = arguments[0] == "--write"
    page, programs = (pathlib.Path(name).resolve() for name in arguments[wants_write:])
    readers = Readers(programs)
    before = page.read_text()
    after = renew(before, readers)
    if wants_write and after != before:
        page.write_text(after)
    elif after != before:
        sys.stdout.writelines(difflib.unified_diff(before.splitlines(True), after.splitlines(True), page.name,
                                                   "as it ought to be", n=0))
        print(f"{page.name} is out of date; scripts/update-docs brings it up")
    missing = readers.objects() - readers.shown
    if missing:
        print(f"{page.name}: no table of " + ", ".join(sorted(missing)))
    sys.exit(1 if missing or (after != before and not wants_write) else 0)


if __name__ == "__main__":
    main()
