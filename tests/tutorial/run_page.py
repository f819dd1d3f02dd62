#!/usr/bin/env python3
"""Does what a page tells its reader to do: run_page.py [--write] PAGE PROGRAMS LIBRARY

    <!-- write: NAME -->      the block of code that follows becomes the file NAME
    ```console                each line behind "$ " is run, and must print what stands below it

All happens in an empty folder, with a copy of `sfg` that finds LIBRARY as an installed one does, and with the
page's program `example_tutorial` as `./wall`. PROGRAMS is the folder of both. With --write the page is brought up
to date instead.
"""

import difflib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

INSTALLED = "/usr/local/share/sfg/library"


class Reader:
    def __init__(self, programs, library, folder):
        prefix = folder / "prefix"
        (prefix / "bin").mkdir(parents=True)
        (prefix / "share/sfg").mkdir(parents=True)
        shutil.copy2(programs / "sfg", prefix / "bin/sfg")
        self.library = prefix / "share/sfg/library"
        self.library.symlink_to(library)
        self.place = folder / "place"
        self.place.mkdir()
        if (programs / "example_tutorial").exists():
            (self.place / "wall").symlink_to(programs / "example_tutorial")
        self.environment = dict(os.environ, PATH=f"{prefix}/bin:{os.environ['PATH']}", SFG_LIBRARY=str(self.library))

    def write(self, name, text):
        target = self.place / name
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text(text)

    def run(self, command):
        done = subprocess.run(["bash", "-c", command], cwd=self.place, env=self.environment, timeout=120,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        text = done.stdout.decode().replace(str(self.library), INSTALLED)
        return text if text.endswith("\n") or not text else text + "\n"


def console(reader, block):
    """The block with what its commands print."""
    lines = []
    command = None
    for line in block.splitlines():
        if command is not None:
            lines.append(line)
            command += "\n" + line
        elif line.startswith("$ "):
            lines.append(line)
            command = line[2:]
        else:
            continue
        if not command.endswith(("\\", "|")):
            lines += reader.run(command).splitlines()
            command = None
    return "\n".join(lines) + "\n"


def renew(page, reader):
    block = re.compile(r"(?:<!-- write: (\S+) -->\n)?```(\w*)\n(.*?)^```$", re.S | re.M)

    def renewed(found):
        name, language, text = found.groups()
        if name:
            reader.write(name, text)
        if language != "console":
            return found.group(0)
        return "```console\n" + console(reader, text) + "```"

    return block.sub(renewed, page)


def main():
    arguments = sys.argv[1:]
    wants_write = arguments[0] == "--write"
    page, programs, library = (pathlib.Path(name).resolve() for name in arguments[wants_write:])
    before = page.read_text()
    if "```console" not in before:
        sys.exit(f"{page.name}: no command to run")
    with tempfile.TemporaryDirectory() as folder:
        after = renew(before, Reader(programs, library, pathlib.Path(folder)))
    if wants_write:
        if after != before:
            page.write_text(after)
        return
    if after != before:
        sys.stdout.writelines(difflib.unified_diff(before.splitlines(True), after.splitlines(True), page.name,
                                                   "as it ought to be"))
        sys.exit(f"{page.name} is out of date; scripts/update-docs brings it up")


if __name__ == "__main__":
    main()
