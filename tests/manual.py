#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Does what the manual says.

   manual.py QUILLFORTH_CLI GALLERY_SERVER GALLERY MANUAL

Each command in a "console" block is run, those of a page one after the other in one folder, against the sample gallery.
It has to succeed, and its output to hold what the manual names below it: the texts on each side of "…", line by line."""
import os, pathlib, re, subprocess, sys, tempfile

CLI, SERVER, GALLERY, MANUAL = map(os.path.abspath, sys.argv[1:])
NAME = "http://gallery.example"


def commands(page):
    """Each command, and the lines below it."""
    for block in re.findall(r"^```console\n(.*?)^```$", page.read_text(), re.MULTILINE | re.DOTALL):
        for part in re.split(r"^\$ ", block, flags=re.MULTILINE)[1:]:
            command, *named = part.splitlines()
            yield command, named


def faults(command, named, folder, origin, environment):
    command = command.replace(NAME, origin)
    result = subprocess.run(["bash", "-o", "pipefail", "-c", command], cwd=folder, env=environment, text=True, timeout=60,
                            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    texts = [text.strip() for line in named for text in line.replace(NAME, origin).split("…")]
    missing = [text for text in texts if text not in result.stdout]
    if result.returncode != 0 or missing:
        yield f"$ {command}\n{result.stdout}status {result.returncode}, missing: {missing}"


def run(page, origin, folder):
    # The gallery is on loopback, which needs no connection.
    program = pathlib.Path(folder, "bin/quillforth-cli")
    program.parent.mkdir()
    program.write_text(f'#!/bin/sh\n[ "$1" = get ] && shift && exec "{CLI}" get --local "$@"\nexec "{CLI}" "$@"\n')
    program.chmod(0o755)
    (home := pathlib.Path(folder, "home")).mkdir()
    own = {"HOME": str(home), "PATH": f"{program.parent}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8"}
    kept = {name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}
    for command, named in commands(page):
        yield from (f"{page}: {fault}" for fault in faults(command, named, home, origin, own | kept))


with subprocess.Popen([SERVER, GALLERY], stdout=subprocess.PIPE, text=True) as server:
    try:
        address = server.stdout.readline().strip()
        found, count = [], 0
        for path in sorted(pathlib.Path(MANUAL).rglob("*.md")):
            count += len(list(commands(path)))
            with tempfile.TemporaryDirectory(dir=".") as scratch:
                found += run(path, address, os.path.abspath(scratch))
    finally:
        server.kill()
print(*found, f"{count} commands, {len(found)} faults", sep="\n")
sys.exit(1 if found or not count else 0)
