#!/usr/bin/env python3
"""Writes the fragments of library/materialx from the tables beside this script: generate.py [--check]

definitions.txt  node by node its definitions: NAME: INPUTS -> OUTPUTS. An input is NAME TYPE=VALUE, or NAME TYPE@SOURCE
                 when an unwired one is read from the geometry; {a|b} are the names of an enumeration's values.
nodes.txt        what a node computes: [NODE] FILE, or [NODE = DEFINITION...] for some of its definitions, then lines
                 "> description", "source: ...", "includes: ...", and the code. In it port names stand for themselves,
                 $NAME for the port widened to the type of the first output, $T for that type, $0, $1 for its numbers,
                 $rows for all inputs,
                 $light for the light that is added up, $N for the number of its components where that is not 1, $first for as many first components.
                 Behind a line "throughput:" or "emission:" stands the code of a second fragment of the same inputs,
                 NAME_throughput or NAME_emission. These and what is lit have only the ports that their code names.
ports.txt        NAME or NODE.NAME: description | least greatest step | kind space

With --check nothing is written, and files that differ are told.
"""

import copy
import json
import pathlib
import re
import sys

HERE = pathlib.Path(__file__).resolve().parent
LIBRARY = HERE.parent.parent / "library" / "materialx"

TYPES = {
    "float": "float", "integer": "int", "boolean": "bool", "color3": "float3", "color4": "float4", "vector2": "float2",
    "vector3": "float3", "vector4": "float4", "matrix33": "float3x3", "matrix44": "float4x4", "string": "int",
    "filename": "sfg_sampler2D", "BSDF": "float3", "EDF": "float3",
}
COMPONENTS = {"float": 1, "int": 1, "bool": 1, "float2": 2, "float3": 3, "float4": 4, "float3x3": 9, "float4x4": 16}
# Names that the shader language keeps for itself.
KEYWORDS = {"in", "out", "default", "min", "max", "line", "point", "sample", "pass"}
# What an unwired input is read from.
GEOMETRY = {
    "UV0": "sfg_texCoord0",
    "Pobject": "sfg_objectPosition",
    "Nobject": "sfg_objectNormal",
    "Nworld": "sfg_safeNormalize(sfg_worldNormal)",
    "Tworld": "sfg_safeNormalize(sfg_worldTangent)",
    "Bworld": "sfg_safeNormalize(sfg_worldBinormal)",
    "Vworld": "sfg_safeNormalize(sfg_worldPosition - sfg_eyePosition)",
}
GEOMETRY_WORDS = {
    "UV0": "the first texture coordinates", "Pobject": "the position in object space",
    "Nobject": "the normal in object space", "Nworld": "the world normal", "Tworld": "the world tangent",
    "Bworld": "the world binormal", "Vworld": "the direction from the eye to the point",
}


class Port:
    def __init__(self, text, node):
        names = re.search(r" \{(.*)\}$", text)
        self.choices = names.group(1).split("|") if names else []
        text = text[: names.start()] if names else text
        self.name, kind = text.split(" ", 1)
        self.given = None
        self.source = None
        if "@" in kind:
            kind, self.source = kind.split("@")
        elif "=" in kind:
            kind, self.given = kind.split("=", 1)
        # A closure comes with what it lets through.
        self.isLayered = kind.endswith("+")
        kind = kind.rstrip("+")
        self.kind = kind
        self.node = node
        self.type = TYPES[kind]
        self.code = self.name + "_" if self.name in KEYWORDS else self.name

    def value(self):
        if self.given is None:
            return None
        if self.kind == "boolean":
            return self.given == "true"
        if self.kind == "string":
            return self.choices.index(self.given)
        if self.kind == "integer":
            return int(self.given)
        numbers = [float(number) for number in self.given.split(",")]
        return numbers[0] if len(numbers) == 1 else numbers


def ports_of(texts, node):
    for text in texts:
        port = Port(text, node)
        yield port
        if port.isLayered:
            yield Port(f"{port.name}_throughput color3=1,1,1", node)


class Definition:
    def __init__(self, node, line):
        self.node = node
        self.name, ports = line.split(": ", 1)
        inputs, outputs = ports.split("->")
        self.inputs = list(ports_of([text for text in inputs.strip().split("; ") if text], node))
        self.outputs = [Port(text, node) for text in outputs.strip().split("; ")]


def sections(file):
    """The blocks of a table, each with its header's text."""
    header, lines = None, []
    for line in (HERE / file).read_text().splitlines():
        if line.startswith("#"):
            continue
        start = re.match(r"\[(.*?)\](.*)$", line)
        if start:
            if header:
                yield header, lines
            header, lines = (start.group(1), start.group(2).strip()), []
        elif line.strip() and header:
            lines.append(line)
    yield header, lines


class Node:
    def __init__(self, file, lines):
        self.file = file
        self.description = " ".join(line[2:] for line in lines if line.startswith("> "))
        self.keys = dict(line.split(": ", 1) for line in lines if re.match(r"(source|includes): ", line))
        code = [line for line in lines if not re.match(r"> |(source|includes): ", line)]
        # By what is appended to the fragment's name.
        self.codes = {"": []}
        for line in code:
            companion = re.match(r"(throughput|emission):$", line)
            if companion:
                part = "_" + companion.group(1)
                self.codes[part] = []
            elif len(self.codes) == 1:
                self.codes[""].append(line)
            else:
                self.codes[part].append(line)
        self.isLit = any("$light" in line for line in self.codes[""])

    def isClosure(self):
        return self.isLit or len(self.codes) > 1


def read_nodes():
    """By node the file and what is computed, by definition what differs."""
    nodes, definitions, file = {}, {}, None
    for (name, rest), lines in sections("nodes.txt"):
        file = rest or file
        if " = " in name:
            for definition in name.split(" = ")[1].split():
                definitions[definition] = Node(file, lines)
        else:
            nodes[name] = Node(file, lines)
    return nodes, definitions


def read_ports():
    ports = {}
    for line in (HERE / "ports.txt").read_text().splitlines():
        if line and not line.startswith("#"):
            name, rest = line.split(": ", 1)
            ports[name] = [part.strip() for part in rest.split("|")]
    return ports


def splat(type_name, text):
    count = COMPONENTS[type_name]
    return text if count == 1 else f"{type_name}({', '.join([text] * count)})"


def number(value):
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, list):
        return "[" + ", ".join(number(item) for item in value) + "]"
    return str(value)


def reduced(definition, code):
    """The definition with the ports that the code names."""
    made = copy.copy(definition)
    text = "\n".join(code)

    def isNamed(port):
        return re.search(rf"(?<![.\w])\$?{port.name}\b", text) is not None

    made.inputs = [port for port in definition.inputs if isNamed(port)]
    made.outputs = [port for port in definition.outputs if isNamed(port)]
    return made


LIGHTS = {"default": "sfg_makeHeadLight(sfg_eyePosition, sfg_worldPosition)", "sfg_Light": "sfg_currentLight"}


def code_of(definition, code, light=""):
    """The lines of the implementation."""
    ports = {port.name: port for port in definition.inputs + definition.outputs}
    result = definition.outputs[0].type
    locals_ = {}
    for port in definition.inputs:
        if port.source:
            locals_[port.name] = port.code + "_here"

    def written(name):
        return locals_.get(name, ports[name].code)

    def replace(match):
        word = match.group(0)
        if word == "$T":
            return result
        if word == "$rows":
            return ", ".join(port.code for port in definition.inputs)
        if word == "$first":
            return {1: ".x", 2: ".xy", 3: ""}[COMPONENTS[result]]
        if word[0] == "$" and word[1:].isdigit():
            return splat(result, word[1:] + (".0" if result not in ("int", "bool") else ""))
        if word[0] == "$":
            port = ports[word[1:]]
            isWide = port.type == result
            return written(port.name) if isWide else splat(result, written(port.name))
        return written(word) if word in ports else word

    text = "\n".join(code).replace("$light", light)
    text = text.replace("$N", {1: "", 2: "2", 3: "3", 4: "4"}.get(COMPONENTS[result], ""))
    body = re.sub(r"(?<![.$\w])\$?\w+|\$first", replace, text).split("\n")
    used = [port for port in definition.inputs if port.source and re.search(rf"\b{locals_[port.name]}\b", "\n".join(body))]
    head = [
        f"  {port.type} {locals_[port.name]} = sfg_isConnected({port.code}) ? {port.code} : {GEOMETRY[port.source]};"
        for port in used
    ]
    parameters = [f"{port.type} {port.code}" for port in definition.inputs]
    parameters += [f"out {port.type} {port.code}" for port in definition.outputs]
    signature = f"void mtlx_{definition.name}({', '.join(parameters)})"
    if len(signature) > 116:
        lines = [f"void mtlx_{definition.name}("] + [f"    {text}," for text in parameters]
        lines[-1] = lines[-1][:-1] + ")"
    else:
        lines = [signature]
    return lines + ["{"] + head + ["  " + line for line in body] + ["}"]


def describe(port, isInput, texts):
    """The port's line of "ports", or nothing."""
    says = texts.get(f"{port.node}.{port.name}") or texts.get(port.name)
    if not says:
        raise SystemExit(f"ports.txt: no description of {port.node}.{port.name}")
    description = says[0]
    if port.source:
        description = f"{description}; unconnected: {GEOMETRY_WORDS[port.source]}"
    if port.choices:
        values = ", ".join(f"{index} {name}" for index, name in enumerate(port.choices))
        description = f"{description}: {values}"
    members = [("description", json.dumps(description, ensure_ascii=False))]
    if port.code != port.name:
        members.append(("label", json.dumps(port.name)))
    if isInput and port.value() is not None:
        members.append(("value", number(port.value())))
    limits = says[1].split() if len(says) > 1 else []
    if port.choices:
        limits = ["0", str(len(port.choices) - 1), "1"]
    if isInput and limits and port.type in ("float", "int", "float2", "float3", "float4"):
        # A value beyond the usual range widens it.
        values = port.value() if isinstance(port.value(), list) else [port.value() or 0]
        limits[0] = limits[0] if float(limits[0]) <= min(values) else number(min(values))
        limits[1] = limits[1] if float(limits[1]) >= max(values) else number(max(values))
        members += list(zip(("min", "max", "step"), limits))
    kinds = says[2].split() if len(says) > 2 else []
    if port.kind in ("color3", "color4"):
        kinds = ["color", "linear"]
    if port.source == "UV0":
        kinds = ["uv"]
    if port.source in ("Nworld",):
        kinds = ["normal", "world"]
    if port.source in ("Tworld", "Bworld", "Vworld"):
        kinds = ["direction", "world"]
    if port.source == "Pobject":
        kinds = ["position", "object"]
    if port.source == "Nobject":
        kinds = ["normal", "object"]
    members += [(key, json.dumps(word)) for key, word in zip(("kind", "space"), kinds)]
    if len(members) == 1:
        return f"{json.dumps(port.code)}: {members[0][1]}"
    text = ", ".join(f"{json.dumps(key)}: {value}" for key, value in members)
    return f"{json.dumps(port.code)}: {{ {text} }}"


COMPANIONS = {
    "": "", "_throughput": " What it lets through to the layers below.", "_emission": " What it emits, and its coverage.",
}


BRING_MATH = ["sfg_mtlx_bsdf.h", "sfg_mtlx_geometry.h", "sfg_mtlx_noise.h"]


def uses(text, header):
    """Whether code names something that the include file declares."""
    file = next(path for path in (LIBRARY / header, LIBRARY.parent / header) if path.exists())
    declared = re.findall(r"^(?:\w+ (\w+)\(|struct (\w+)|#define (\w+))", file.read_text(), re.MULTILINE)
    return any(name in text for names in declared for name in names if name)


def implementation(code, includes, indent):
    lines = [f'{indent}"language": ["dx11"],']
    if includes:
        lines.append(f'{indent}"includes": {json.dumps(includes)},')
    lines.append(f'{indent}"implementation": [')
    lines += [f"{indent}  {json.dumps(line)}," for line in code]
    lines[-1] = lines[-1][:-1]
    lines.append(f"{indent}]")
    return lines


def fragments(definition, node, texts):
    """The fragment, and those that stand beside it."""
    for part, code in node.codes.items():
        yield fragment(definition, node, part, code, texts)


def fragment(definition, node, part, lines_of_code, texts):
    if node.isClosure():
        definition = reduced(definition, lines_of_code)
    definition = copy.copy(definition)
    definition.name += part
    ports = [describe(port, True, texts) for port in definition.inputs]
    ports += [describe(port, False, texts) for port in definition.outputs]
    isLit = any("$light" in line for line in lines_of_code)
    codes = {name: code_of(definition, lines_of_code, light) for name, light in LIGHTS.items()} if isLit else {
        "default": code_of(definition, lines_of_code)}
    text = "\n".join(codes["default"])
    includes = [name for name in node.keys.get("includes", "").split() if uses(text, name)]
    if any(port.kind == "filename" for port in definition.inputs):
        includes.append("sfg_mtlx_textures.h")
    if uses(text, "sfg_math.h") and not any(name in includes for name in BRING_MATH):
        includes.append("sfg_math.h")
    includes = sorted(set(includes))
    description = node.description + COMPANIONS[part]
    lines = [f'  "mtlx_{definition.name}": {{', f'    "description": {json.dumps(description)},']
    if "source" in node.keys:
        lines.append(f'    "source": {json.dumps(node.keys["source"])},')
    lines.append('    "ports": {')
    lines += [f"      {port}," for port in ports]
    lines[-1] = lines[-1][:-1]
    lines.append("    },")
    if not isLit:
        return "\n".join(lines + implementation(codes["default"], includes, "    ") + ["  }"])
    lines.append('    "profiles": [')
    for name, code in codes.items():
        lines += ["      {", f'        "name": {json.dumps(name)},'] + implementation(code, includes, "        ") + ["      },"]
    lines[-1] = "      }"
    return "\n".join(lines + ["    ]", "  }"])


def make_files():
    nodes, exceptions = read_nodes()
    texts = read_ports()
    files = {}
    missing = []
    for (name, _), lines in sections("definitions.txt"):
        for line in lines:
            definition = Definition(name, line)
            node = exceptions.get(definition.name) or nodes.get(name)
            if not node:
                missing.append(definition.name)
                continue
            files.setdefault(node.file, []).extend(fragments(definition, node, texts))
    made = {f"{file}.fraglib": "{\n" + ",\n\n".join(texts) + "\n}\n" for file, texts in files.items()}
    return made, missing


def main():
    made, missing = make_files()
    if "--missing" in sys.argv[1:]:
        print("\n".join(missing))
        return
    if "--check" in sys.argv[1:]:
        there = {path.name for path in LIBRARY.glob("*.fraglib")}
        different = [name for name, text in made.items() if name not in there or (LIBRARY / name).read_text() != text]
        different += sorted(there - set(made))
        if different:
            sys.exit("not as scripts/materialx/generate.py writes them: " + ", ".join(sorted(different)))
        return
    for name, text in made.items():
        (LIBRARY / name).write_text(text)


if __name__ == "__main__":
    main()
