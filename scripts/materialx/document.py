#!/usr/bin/env python3
"""Writes the tables of docs/materialx.md from the library: document.py [--check]

For each node of library/materialx/definitions.json: how many of its definitions a fragment computes, in which file, after
which source, and which inputs the fragment does not have. With --check nothing is written, and a difference is told.
"""

import json
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
LIBRARY = ROOT / "library" / "materialx"
PAGE = ROOT / "docs" / "materialx.md"
BEGIN = "<!-- written by scripts/materialx/document.py -->\n"
END = "<!-- until here -->\n"

# What the importer does without a fragment.
IMPORTED = {
    "constant": "strings and file names: followed by the importer",
    "dot": "strings and file names: followed by the importer",
    "geompropvalue": "an input of the graph, `geomprop_NAME`",
    "UsdPrimvarReader": "an input of the graph, `geomprop_NAME`",
    "surfacematerial": "what is imported",
}


def fragments():
    """By name the library file's stem and the fragment."""
    found = {}
    for file in sorted(LIBRARY.glob("*.fraglib")):
        for name, fragment in json.loads(file.read_text()).items():
            found[name] = (file.stem, fragment)
    return found


def taken(fragment):
    """The input names as definitions have them."""
    ports = fragment.get("ports", {})
    return {port.get("label", name) if isinstance(port, dict) else name for name, port in ports.items()}


def left_out(definition, known):
    name = "mtlx_" + definition["name"]
    parts = [known[part][1] for part in (name, name + "_throughput", name + "_emission") if part in known]
    names = set().union(*(taken(part) for part in parts))
    closures = {"BSDF", "EDF", "VDF", "surfaceshader"}
    return [
        port["name"] for port in definition["inputs"] if port["name"] not in names and port["type"] not in closures
    ]


def row(node, definitions, known):
    brought = [each for each in definitions if "mtlx_" + each["name"] in known]
    files = sorted({known["mtlx_" + each["name"]][0] for each in brought})
    sources = sorted({known["mtlx_" + each["name"]][1].get("source", "") for each in brought} - {""})
    without = []
    for definition in brought:
        without += [name for name in left_out(definition, known) if name not in without]
    notes = []
    if sources:
        notes.append("; ".join(sources))
    if without:
        notes.append("without " + ", ".join(f"`{name}`" for name in without))
    if len(brought) < len(definitions):
        missing = [each["name"] for each in definitions if each not in brought]
        notes.append(IMPORTED.get(node) or "not brought: " + ", ".join(f"`{name}`" for name in missing))
    cells = [f"`{node}`", f"{len(brought)} of {len(definitions)}", ", ".join(files) or "-", "; ".join(notes)]
    return "| " + " | ".join(cells) + " |"


def tables():
    known = fragments()
    nodes = {}
    for definition in json.loads((LIBRARY / "definitions.json").read_text()):
        nodes.setdefault(definition["node"], []).append(definition)
    brought = sum("mtlx_" + each["name"] in known for all_ in nodes.values() for each in all_)
    lines = [
        f"{brought} of {sum(len(each) for each in nodes.values())} definitions of {len(nodes)} nodes have a fragment.",
        "",
        "| node | definitions | library | source of the formula, and what is different |",
        "|---|---|---|---|",
    ]
    return "\n".join(lines + [row(node, nodes[node], known) for node in sorted(nodes, key=str.lower)]) + "\n"


def main():
    text = PAGE.read_text()
    start = text.index(BEGIN) + len(BEGIN)
    made = text[:start] + "\n" + tables() + "\n" + text[text.index(END) :]
    if "--check" in sys.argv[1:]:
        if made != text:
            sys.exit("docs/materialx.md is not as scripts/materialx/document.py writes it")
        return
    PAGE.write_text(made)


if __name__ == "__main__":
    main()
