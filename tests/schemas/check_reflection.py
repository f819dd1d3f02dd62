#!/usr/bin/env python3
"""Holds what `sfg reflect` writes against its schema: check_reflection.py ROOT SFG assembled [every]

Every example material, plain and lit, in each stage and for each target that the schema names (with `assembled` alone:
before any compiler), is valid. The schema refuses documents with a misspelt, missing or additional key, wherever an
object of a kind stands first.
"""

import copy
import json
import pathlib
import subprocess
import sys

try:
    import jsonschema
except ImportError:
    print("no module jsonschema")
    sys.exit(77)

root, sfg, *kinds = sys.argv[1:]
root = pathlib.Path(root)
library = str(root / "library")


def run(*arguments):
    done = subprocess.run([sfg, *map(str, arguments)], capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"sfg {' '.join(map(str, arguments))}: {done.stderr}")
    return json.loads(done.stdout)


schema = run("schema", "reflection")
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
properties = schema["properties"]
targets = properties["target"]["enum"] if "every" in kinds else ["assembled"]
lit = ["--tool", "lightloop", "--environment", root / "examples/environments/studio.json"]
faults = []
documents = []
for material in sorted((root / "examples/materials").glob("*.json")):
    for stage in properties["stage"]["enum"]:
        for target in targets:
            if (stage, target) == ("compute", "essl300"):
                continue  # has no compute stage
            arguments = ["reflect", material, "-L", library, "-I", library, "--stage", stage, "--target", target, *lit]
            document = run(*arguments)
            documents.append(document)
            for error in validator.iter_errors(document):
                faults.append(f"{material.name}, {stage}, {target}: {error.json_path}: {error.message}")
if not documents:
    faults.append("no example materials")


def objects(value, kind, path=()):
    """Each object of the document with its path and the schema's name of its kind."""
    if kind.get("oneOf"):
        kind = kind["oneOf"][0]
    if "$ref" in kind:
        name = kind["$ref"].rsplit("/", 1)[1]
        kind = schema["$defs"][name]
    else:
        name = "shader"
    if isinstance(value, list):
        for index, item in enumerate(value):
            yield from objects(item, kind["items"], (*path, index))
    elif isinstance(value, dict):
        yield name, path
        for key, item in value.items():
            yield from objects(item, kind["properties"][key], (*path, key))


def at(document, path):
    for step in path:
        document = document[step]
    return document


seen = {}
for document in documents:
    if validator.is_valid(document):
        for name, path in objects(document, schema):
            seen.setdefault(name, (document, path))
for name in ["shader", *schema["$defs"]]:
    if name not in seen:
        faults.append(f"no document has a {name}")
        continue
    document, path = seen[name]
    kind = schema if name == "shader" else schema["$defs"][name]

    def refuses(what, change):
        changed = copy.deepcopy(document)
        change(at(changed, path))
        if validator.is_valid(changed):
            faults.append(f"a {name} {what} is not refused")

    for key in at(document, path):
        refuses(f"with a misspelt {key}", lambda thing, key=key: thing.update({key + "s": thing.pop(key)}))
    for key in kind.get("required", []):
        refuses(f"without {key}", lambda thing, key=key: thing.pop(key))
    refuses("with a key of nobody", lambda thing: thing.update(nobody=1))
refusal = copy.deepcopy(documents[0]) if documents else {}
refusal["target"] = "dxil"
if validator.is_valid(refusal):
    faults.append("an unknown target is not refused")

print(f"{len(documents)} documents, {len(seen)} kinds of objects, {len(faults)} faults")
print("\n".join(faults[:40]))
sys.exit(1 if faults else 0)
