#!/usr/bin/env python3
"""Every fragment of a library is compared with numbers or seen in a picture that a test keeps.

check_seen.py ROOT [EXCEPTIONS]

ROOT holds library/*.fraglib and what the tests look at. A fragment counts when

- a test of tests/numbers names it in quotes, or an environment there has it as a light,
- a document of examples/materials or examples/environments has it, each of which is drawn, or it is the light of the
  environments `studio` and `sky`, under which the examples are drawn,
- docs/pictures/patterns has its picture.

EXCEPTIONS holds lines "FRAGMENT: REASON"; one that is no fragment, or that is seen after all, is a fault.
"""
import json
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
exceptions_file = pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else pathlib.Path(__file__).with_name("unseen.txt")


def texts(folder, pattern):
    return "".join(file.read_text() for file in sorted((root / folder).glob(pattern)))


def words_in_documents(value):
    """The fragments that a graph or an environment names, those of its chains included."""
    if isinstance(value, dict):
        for key, member in value.items():
            if key in ("fragment", "output") and isinstance(member, str):
                yield member
            elif key in ("preprocess", "postprocess"):
                yield from member
            else:
                yield from words_in_documents(member)
    elif isinstance(value, list):
        for element in value:
            yield from words_in_documents(element)


fragments = {}
for file in sorted((root / "library").glob("*.fraglib")):
    fragments.update((name, file.name) for name in json.loads(file.read_text()) if not name.startswith("//"))

seen = {"environmentMapLight"} | set(re.findall(r'"(\w+)"', texts("tests/numbers", "*.cpp")))
for folder in ("tests/numbers/environments", "examples/materials", "examples/environments"):
    for file in sorted((root / folder).glob("*.json")):
        seen.update(words_in_documents(json.loads(file.read_text())))
seen.update(file.stem for file in (root / "docs/pictures/patterns").glob("*.png"))

exceptions = {}
for line in exceptions_file.read_text().splitlines():
    if line.strip() and not line.startswith("#"):
        name, _, reason = line.partition(":")
        exceptions[name.strip()] = reason.strip()

faults = []
for name, file in fragments.items():
    if name not in seen and name not in exceptions:
        faults.append(f"{file}: `{name}` is in no test of numbers and in no picture that a test keeps")
for name, reason in exceptions.items():
    if name not in fragments:
        faults.append(f"{exceptions_file.name}: `{name}` is no fragment of the library")
    elif name in seen:
        faults.append(f"{exceptions_file.name}: `{name}` is tested; take it off the list")
    elif not reason:
        faults.append(f"{exceptions_file.name}: `{name}` has no reason")
print("\n".join(faults), end="\n" if faults else "")
sys.exit(1 if faults else 0)
