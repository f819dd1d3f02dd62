#!/usr/bin/env python3
"""Every input and uniform of the fragments of a folder says what it is: check_ports.py FOLDER

An input has a description; a value, unless its type has none or the code asks whether it is connected; a range and a
step when it is a number that somebody turns at, which is any number but the operands of plain arithmetic below.
Values lie in their ranges.
"""

import json
import pathlib
import re
import sys

# Any number will do for these: operands and coordinates.
WITHOUT_RANGE = {
    "a", "b", "x", "y", "z", "w", "low", "high", "edge", "factor", "condition", "whenBelow", "whenAbove", "fromLow",
    "fromHigh", "toLow", "toHigh", "frequency", "amplitude", "position", "height", "constant_number",
    # of the nodes of material documents
    "in_", "iny", "inx", "value", "value1", "value2", "fg", "bg", "default_", "min_", "max_", "inlow", "inhigh",
    "outlow", "outhigh", "valuel", "valuer", "valuet", "valueb", "valuetl", "valuetr", "valuebl", "valuebr",
} | {f"in{i}" for i in range(1, 11)}
NUMBER = re.compile(r"(float|int|uint|bool)([234]?)(x[234])?")


def inputs_of(fragment):
    """Names and types of the inputs, as the code has them; of an expression those of its interface."""
    profile = fragment.get("profiles", [fragment])[0]
    code = "\n".join(profile["implementation"])
    if profile.get("mode", "function").lower() == "inline":
        types = {port["name"]: port["type"] for port in fragment.get("interface", {}).get("inputs", [])}
        return [(name, types.get(name, "")) for name in dict.fromkeys(re.findall(r"\{\{(\w+)\}\}", code))]
    words = [parameter.split(":")[0].split() for parameter in re.search(r"\(([^)]*)\)", code).group(1).split(",")]
    return [(word[-1], word[-2]) for word in words if word and word[0] != "out"]


def numbers(value):
    return [value] if isinstance(value, (int, float)) else value


def faults_of(name, type_name, says, may_lack_value, may_lack_range):
    if isinstance(says, str):
        says = {"description": says}
    if not says.get("description"):
        yield "has no description"
    isNumber = NUMBER.fullmatch(type_name) is not None
    if isNumber and "value" not in says and not may_lack_value:
        yield "has no value"
    if type_name in ("float", "int", "uint") and not may_lack_range:
        for member in ("min", "max", "step"):
            if member not in says:
                yield f"has no {member}"
    for number in numbers(says.get("value", [])):
        if any(number < least for least in numbers(says.get("min", []))) or \
                any(number > most for most in numbers(says.get("max", []))):
            yield "has a value out of its range"


def faults_of_fragment(name, fragment):
    text = json.dumps(fragment)
    ports = fragment.get("ports", {})
    for port, type_name in inputs_of(fragment):
        asked = re.search(rf"sfg_isConnected\(\s*{port}\s*\)|sfg_shader\(\s*{port}\s*,", text) is not None
        for fault in faults_of(port, type_name, ports.get(port, {}), asked, asked or port in WITHOUT_RANGE):
            yield f"input {port} {fault}"
    for uniform in fragment.get("uniforms", []):
        for fault in faults_of(uniform["name"], uniform["type"], uniform, False, uniform["name"] in WITHOUT_RANGE):
            yield f"uniform {uniform['name']} {fault}"


def main():
    faults = 0
    fragments = 0
    for file in sorted(pathlib.Path(sys.argv[1]).glob("*.fraglib")):
        for name, fragment in json.loads(file.read_text()).items():
            if name.startswith("//") or name == "$schema":
                continue
            fragments += 1
            for fault in faults_of_fragment(name, fragment):
                print(f"{file.name}: {name}: {fault}")
                faults += 1
    if fragments == 0:
        sys.exit("no fragments to check")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
