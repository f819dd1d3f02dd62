#!/usr/bin/env python3
"""Writes library/materialx/definitions.json from a flat table of node definitions: definitions.py TABLE [--check]

TABLE is `definitions/nodedefs.json` of the folder of reference documents. What is written are facts: names, types and
default values, a definition a line, so that a reader need parse only the lines of the nodes that it meets. With
--check nothing is written, and a difference is told.

  { "node": "mix", "name": "mix_color3", "version": "1.0", "isDefault": true,
    "inputs": [ { "name": "fg", "type": "color3", "value": "0, 0, 0", "geomprop": "UV0", "names": [..],
                  "values": [..], "unit": "degree", "unitType": "angle" } ],
    "outputs": [ { "name": "out", "type": "color3", "value": "0, 0, 0", "input": "bg" } ] }

`isDefault` is left out where a node has one version only, and members without a value are left out.
"""

import json
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
RESULT = ROOT / "library" / "materialx" / "definitions.json"

# Names that a definition takes without listing them.
SPACES = ["", "model", "object", "world"]
UNLISTED = {"fromspace": SPACES, "tospace": SPACES}


def list_of(text):
    return [part.strip() for part in text.split(",")]


def values_of(port):
    """The values that stand for the names, as many numbers for each as the type has."""
    numbers = list_of(port["enumvalues"])
    size = max(1, len(numbers) // len(list_of(port["enum"])))
    return [", ".join(numbers[i : i + size]) for i in range(0, len(numbers), size)]


def input_of(port):
    facts = {"name": port["name"], "type": port["type"]}
    if "value" in port:
        facts["value"] = port["value"]
    for key in ("geomprop", "unit"):
        if key in port:
            facts[key] = port[key]
    if "unittype" in port:
        facts["unitType"] = port["unittype"]
    if "enum" in port:
        facts["names"] = list_of(port["enum"])
    elif port["name"] in UNLISTED:
        facts["names"] = UNLISTED[port["name"]]
    if "enumvalues" in port:
        facts["values"] = values_of(port)
    return facts


def output_of(port):
    facts = {"name": port["name"], "type": port["type"]}
    if "default" in port:
        facts["value"] = port["default"]
    if "defaultinput" in port:
        facts["input"] = port["defaultinput"]
    return facts


def definition_of(row):
    facts = {"node": row["node"], "name": row["name"].removeprefix("ND_")}
    if "version" in row:
        facts["version"] = row["version"]
        facts["isDefault"] = bool(row.get("default_version"))
    facts["inputs"] = [input_of(port) for port in row["inputs"]]
    facts["outputs"] = [output_of(port) for port in row["outputs"]]
    return facts


def with_inherited(rows):
    """A definition that inherits has the inputs and outputs of the other, too."""
    by_name = {row["name"]: row for row in rows}
    for row in rows:
        base = by_name.get(row.get("inherit"))
        whole = dict(row)
        for key in ("inputs", "outputs") if base else ():
            known = {port["name"] for port in row[key]}
            whole[key] = row[key] + [port for port in base[key] if port["name"] not in known]
        yield whole


def main():
    rows = json.loads(pathlib.Path(sys.argv[1]).read_text())
    lines = [json.dumps(definition_of(row)) for row in with_inherited(rows)]
    text = "[\n" + ",\n".join(lines) + "\n]\n"
    if "--check" in sys.argv[2:]:
        if RESULT.read_text() != text:
            sys.exit(f"{RESULT} is not what {sys.argv[1]} gives")
        return
    RESULT.write_text(text)


if __name__ == "__main__":
    main()
