#!/usr/bin/env python3
"""Looks at the portable sources that a build has compiled, with the checks of .clang-tidy.

    tests/house/tidy.py BUILD               all of src and programs that the build compiles
    tests/house/tidy.py BUILD FILE ...      these

What has passed is not looked at again until the source, a header of this house that it includes, its command line, the
checks or the tool has changed; what a run that was broken off has passed counts too.

clang-tidy walks the standard library anew each time it starts, which takes far longer than the source itself. So the
sources of a folder are looked at joined, one including the other. Sources whose local names do not go together are put
into different groups, and where a group gives something to say each of its sources is asked alone.
"""
import collections
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

TOOL = "clang-tidy-14"
ROOT = pathlib.Path(__file__).resolve().parents[2]
# Beyond so many sources in a group another start costs less than a processor without work.
LARGEST_GROUP = 16
# The files in which the build joins sources.
JOINED = re.compile(r"/Unity/unity_\d+_cxx\.cxx$")


def said_by(command, **more):
    return subprocess.run(command, check=True, capture_output=True, text=True, **more).stdout


def sources_of(file):
    """The sources, relative to the root, that the build compiles with this file: itself, or those that it joins."""
    joined = re.findall(r'^#include "(.+)"$', pathlib.Path(file).read_text(), re.M) if JOINED.search(file) else [file]
    return [os.path.relpath(source, ROOT) for source in joined]


def commands_of(build):
    """Per source, relative to the root, the compiler's arguments without the source and what is made of it."""
    commands = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        sources = [source for source in sources_of(entry["file"]) if source.startswith(("src/", "programs/"))]
        words, kept = iter(shlex.split(entry["command"])[1:]), []
        for word in words:
            if word == "-o":
                next(words)
            elif word not in ("-c", entry["file"]):
                kept.append(word)
        for source in sources:
            commands[source] = kept
    return commands


def files_included(build):
    """Per source the files of this house, or made by its build, that it includes."""
    included, sources = collections.defaultdict(set), None
    for line in said_by(["ninja", "-C", str(build), "-t", "deps"]).splitlines():
        if not line.startswith(" "):
            sources = None
            continue
        path = pathlib.Path(os.path.normpath(build / line.strip()))
        if ROOT in path.parents:
            if sources is None:
                sources = sources_of(str(path))
            for source in sources:
                included[source].add(path)
    return included


def digests(commands, included):
    """Per source one digest of all that the answer about it depends on."""
    checks = said_by([TOOL, "--version"]).encode() + (ROOT / ".clang-tidy").read_bytes() + pathlib.Path(__file__).read_bytes()
    known, result = {}, {}
    for source, words in commands.items():
        digest = hashlib.sha256(checks + "\0".join(words).encode())
        for path in sorted(included[source] | {ROOT / source}):
            if path not in known:
                known[path] = hashlib.sha256(path.read_bytes()).digest()
            digest.update(str(path.relative_to(ROOT)).encode() + known[path])
        result[source] = digest.hexdigest()
    return result


def look(sources, words, options=()):
    """What the tool says about these sources, joined when they are several; nothing when they pass."""
    with tempfile.NamedTemporaryFile("w", suffix=".cpp", prefix="joined-") as joined:
        for source in sources:
            joined.write(f'#include "{ROOT / source}"  // NOLINT(bugprone-suspicious-include)\n')
        joined.flush()
        alone = len(sources) == 1
        end = words if alone else [*words, "-ferror-limit=0"]
        run = subprocess.run(
            [TOOL, "--quiet", "--warnings-as-errors=*", f"--config-file={ROOT / '.clang-tidy'}", *options,
             str(ROOT / sources[0]) if alone else joined.name, "--", *end],
            cwd=ROOT, capture_output=True, text=True)
    return "" if run.returncode == 0 else run.stdout or f"{' '.join(sources)}: {TOOL} can not read it\n"


def groups_of(sources, words):
    """Sources with the same command line, in groups that compile when they are joined."""
    while sources:
        group, later = sources[:LARGEST_GROUP], []
        while len(group) > 1:
            # One quick check, since the tool refuses to run none.
            said = look(group, words, ["--checks=-*,modernize-use-nullptr"])
            errors = [line for line in said.splitlines() if ": error: " in line]
            wrong = [source for source in group[1:] if any(line.startswith(f"{ROOT / source}:") for line in errors)]
            if not wrong:
                break
            later += wrong
            group = [source for source in group if source not in wrong]
        yield group
        sources = later + sources[LARGEST_GROUP:]


def main():
    build, asked = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2:]
    commands = commands_of(build)
    now = digests(commands, files_included(build))
    passed = build / "tidy"
    passed.mkdir(exist_ok=True)

    def record(source):
        return passed / source.replace("/", "-")

    changed = [source for source in asked or sorted(commands)
               if not record(source).exists() or record(source).read_text() != now[source]]
    print(f"{len(changed)} of {len(asked or commands)} sources have changed since they passed", flush=True)

    alike = collections.defaultdict(list)
    for source in changed:
        alike[os.path.dirname(source), tuple(commands[source])].append(source)

    def look_at(sources, words):
        if len(sources) > 1 and look(sources, words):
            return "".join(look_at([source], words) for source in sources)
        said = look(sources, words) if len(sources) == 1 else ""
        if not said:
            for source in sources:
                record(source).write_text(now[source])
        return said

    found = False
    with concurrent.futures.ThreadPoolExecutor(int(os.environ.get("VORDANE_TIDY_JOBS", os.cpu_count() or 1))) as workers:
        def all_of(item):
            (_, words), sources = item
            return "".join(look_at(group, words) for group in groups_of(sources, words))
        for said in workers.map(all_of, sorted(alike.items(), key=lambda item: -len(item[1]))):
            found = found or bool(said)
            print(said, end="", flush=True)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
