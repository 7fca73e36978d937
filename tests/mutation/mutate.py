#!/usr/bin/env python3
"""Changes one line of the portable sources at a time and asks the native tests whether they notice.

    tests/mutation/mutate.py [--count N] [--seed S] [--only FOLDER ...] [--workers N] [--out FILE.tsv] [--quick]
                             [--resume]

Each mutant is one small change of one line: an operator, a constant, a truth, a statement left out, or two
statements in the other order. A worker has a copy of the repository and a build tree of shared libraries of its
own (below build/mutation), so that a mutant costs one compilation and one link. The test programs run nearest
folder first and stop at the first failure. What the compiler refuses isn't counted. With --quick the programs
that take most of the time aren't asked, so that a survivor may be one that only they would notice. With --resume
the verdicts that FILE.tsv holds already count, and the run goes on behind them.

Writes one line a mutant: killed, survived or refused; the place; the change; the test that noticed it. Survivors
are printed with their change, to be judged: equivalent, or a rule without a test.
"""
import argparse
import os
import queue
import random
import re
import shutil
import subprocess
import tempfile
import threading
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parents[2]
FOLDERS = ["text", "platform", "platform/sqlite", "platform/dao", "platform/access", "settings", "language", "faults", "pbx", "status",
           "store", "startup"]
# Test programs that say nothing about rules or take most of the time are asked last.
LAST = ["hostile_tests", "reliability_tests", "crash_tests", "sorting_memory_tests", "import_tests"]
# One counts what the engine does from outside of it, which shared libraries hide; one reads the sources alone.
LEFT_OUT = ["work_tests", "house_tests"]
TEST_SECONDS = 180

OPERATORS = [
    (r"(?<![<>=!+\-*/&|])==(?!=)", ["!="]), (r"!=", ["=="]), (r"(?<![<\-=])<=(?!>)", ["<"]), (r"(?<![>\-])>=", [">"]),
    (r"(?<=\s)<(?=\s)", ["<=", ">"]), (r"(?<=\s)>(?=\s)", [">=", "<"]), (r"&&", ["||"]), (r"\|\|", ["&&"]),
    (r"(?<=\s)\+(?=\s)", ["-"]), (r"(?<=\s)-(?=\s)", ["+"]), (r"(?<=\s)\*(?=\s)", ["/"]), (r"(?<=\s)/(?=\s)", ["*"]),
    (r"(?<=\s)%(?=\s)", ["/"]), (r"\+\+", ["--"]), (r"\+=", ["-="]), (r"-=", ["+="]), (r"!(?=[a-zA-Z_(])", [""]),
    (r"\btrue\b", ["false"]), (r"\bfalse\b", ["true"]), (r"\bbreak;", ["continue;"]), (r"\bcontinue;", ["break;"]),
]
NUMBER = re.compile(r"(?<![\w.{<u\"])(0x[0-9A-Fa-f]+|\d+)(?![\w.])")
STATEMENT = re.compile(r"^\s+(?!return\b|const\b|auto\b|using\b|case\b|default\b|else\b|if\b|for\b|while\b|//)"
                       r"[A-Za-z_][\w:>.\-\[\]]*(\(.*\)|\s*(=|\+=|-=)\s.*|\+\+|--);\s*$")
GUARD = re.compile(r"^\s+if \(.*\) (return|continue|break|throw)\b.*;\s*$")
SKIPPED = re.compile(r"^\s*(//|#|\*|namespace|using|static_assert|template|class |struct |enum |[}\]]|$)")


def code_of(line):
    """The line without its comment and with its texts blanked, so that changes fall on code alone."""
    line = re.sub(r'"(\\.|[^"\\])*"', lambda m: '"' + " " * (len(m[0]) - 2) + '"', line)
    line = re.sub(r"'(\\.|[^'\\])'", lambda m: "'" + " " * (len(m[0]) - 2) + "'", line)
    at = line.find("//")
    return line if at < 0 else line[:at]


def changes_of(lines, number):
    """Every change of that line: (what, the new lines in its place, how many lines they replace)."""
    line, code = lines[number], code_of(lines[number])
    if SKIPPED.match(code) or "operator" in code:
        return
    for pattern, others in OPERATORS:
        for match in re.finditer(pattern, code):
            for other in others:
                yield (f"{match[0]} -> {other or 'nothing'}", [line[:match.start()] + other + line[match.end():]], 1)
    for match in NUMBER.finditer(code):
        value = int(match[0], 0)
        yield (f"{match[0]} -> {value + 1}", [line[:match.start()] + str(value + 1) + line[match.end():]], 1)
    if STATEMENT.match(code):
        yield ("left out", [""], 1)
        if number + 1 < len(lines) and STATEMENT.match(code_of(lines[number + 1])):
            yield ("other order", [lines[number + 1], line], 2)
    if GUARD.match(code):
        yield ("left out", [""], 1)


def mutants(folders):
    for folder in folders:
        # The decoders' rules stand in headers, which few sources include.
        endings = (".cpp", ".h") if folder == "faults" else (".cpp",)
        for file in sorted(f for f in (REPOSITORY / "src" / folder).iterdir() if f.suffix in endings):
            lines = file.read_text(encoding="utf-8").split("\n")
            for number in range(len(lines)):
                for change in changes_of(lines, number):
                    yield (folder, file.relative_to(REPOSITORY), number, *change)


class Worker:
    def __init__(self, number, quick=False):
        self.root = REPOSITORY / "build" / "mutation" / f"worker{number}"
        self.build = self.root / "build" / "tree"
        # Every account may go there, since some tests become an ordinary user.
        self.temporary = tempfile.TemporaryDirectory(prefix="vordane-mutation-")
        os.chmod(self.temporary.name, 0o755)
        self.copy_repository()
        self.run(["cmake", "-G", "Ninja", "-S", str(self.root), "-B", str(self.build), "-DCMAKE_BUILD_TYPE=Debug",
                  "-DCMAKE_CXX_FLAGS_DEBUG=-O1", "-DVORDANE_SHARED=ON"], check=True)
        self.run(["cmake", "--build", str(self.build)], check=True)
        self.programs = {}
        for program in sorted(self.build.glob("tests/**/*_tests")):
            if os.access(program, os.X_OK) and program.is_file() and program.name not in LEFT_OUT and not (
                    quick and program.name in LAST):
                self.programs[program.name] = program
        # A program that fails without a change would seem to notice every one.
        noticed = self.judge("text")
        if noticed:
            raise SystemExit(f"the unchanged sources do not pass: {noticed}")

    def copy_repository(self):
        kept = subprocess.run(["git", "ls-files", "-z"], cwd=REPOSITORY, capture_output=True, check=True).stdout
        for name in kept.decode().split("\0")[:-1]:
            source, copy = REPOSITORY / name, self.root / name
            if not copy.exists() or copy.read_bytes() != source.read_bytes():
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy2(source, copy)

    def run(self, command, check=False, seconds=900):
        try:
            return subprocess.run(command, cwd=self.root, capture_output=True, text=True, errors="replace",
                                  check=check, timeout=seconds)
        except subprocess.TimeoutExpired:
            return None

    def order(self, folder):
        near = folder.split("/")[-1]
        related = {"sqlite": ["database", "work"], "dao": ["dao"], "platform": ["platform", "startup"]}.get(near, [near])

        def rank(name):
            if name in LAST:
                return (2, LAST.index(name))
            return (0 if any(r in str(self.programs[name].parent) for r in related) else 1, 0)
        return sorted(self.programs, key=rank)

    def judge(self, folder):
        environment = ["env", "GTEST_FAIL_FAST=1", f"TMPDIR={self.temporary.name}"]
        for name in self.order(folder):
            result = self.run([*environment, str(self.programs[name])], seconds=TEST_SECONDS)
            if result is None:
                return f"{name}: no end"
            if result.returncode != 0:
                failed = re.findall(r"\[  FAILED  \] (\S+)", result.stdout)
                return f"{name}: {failed[0] if failed else 'code ' + str(result.returncode)}"
        return None

    def take(self, mutant):
        folder, file, number, what, new, replaced = mutant
        path = self.root / file
        before = path.read_text(encoding="utf-8")
        lines = before.split("\n")
        lines[number:number + replaced] = new
        path.write_text("\n".join(lines), encoding="utf-8")
        library = "vordane_" + folder.split("/")[-1]
        try:
            built = self.run(["cmake", "--build", str(self.build), "--target", library])
            if built is None or built.returncode != 0:
                return "refused", ""
            noticed = self.judge(folder)
            return ("killed", noticed) if noticed else ("survived", "")
        finally:
            path.write_text(before, encoding="utf-8")
            # The library is as it was, out of the compiler cache, before the next change falls elsewhere.
            self.run(["cmake", "--build", str(self.build), "--target", library], check=True)


def main():
    parser = argparse.ArgumentParser(description="Mutates the portable sources and asks the native tests.")
    parser.add_argument("--count", type=int, default=500)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--only", nargs="*", default=FOLDERS, metavar="FOLDER")
    parser.add_argument("--workers", type=int, default=os.cpu_count())
    parser.add_argument("--out", default=str(REPOSITORY / "build" / "mutation" / "result.tsv"))
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--resume", action="store_true")
    given = parser.parse_args()
    every = list(mutants(given.only))
    random.Random(given.seed).shuffle(every)
    print(f"{len(every)} possible changes; trying until {given.count} compile", flush=True)
    waiting, counts = queue.Queue(), {"killed": 0, "survived": 0, "refused": 0}
    lock, building = threading.Lock(), threading.Lock()
    Path(given.out).parent.mkdir(parents=True, exist_ok=True)
    known = set()
    if given.resume and Path(given.out).exists():
        for row in Path(given.out).read_text(encoding="utf-8").splitlines():
            verdict, place, what, _, new = row.split("\t", 4)
            counts[verdict] += 1
            known.add((place, what, new))
    for mutant in every:
        _, file, number, what, new, _ = mutant
        if (f"{file}:{number + 1}", what, "".join(new).strip()) not in known:
            waiting.put(mutant)

    def work(number, out):
        with building:  # one after the other: the second finds its objects in the compiler cache
            worker = Worker(number, given.quick)
        while True:
            with lock:
                if counts["killed"] + counts["survived"] >= given.count or waiting.empty():
                    return
                mutant = waiting.get()
            verdict, noticed = worker.take(mutant)
            _, file, line, what, new, _ = mutant
            old = (REPOSITORY / file).read_text(encoding="utf-8").split("\n")[line].strip()
            with lock:
                counts[verdict] += 1
                print(verdict, f"{file}:{line + 1}", what, noticed, "".join(new).strip(), sep="\t", file=out, flush=True)
                if verdict == "survived":
                    print(f"survived: {file}:{line + 1}: {what}: {''.join(new).strip() or old}", flush=True)

    with open(given.out, "a" if given.resume else "w", encoding="utf-8") as out:
        threads = [threading.Thread(target=work, args=(n, out)) for n in range(given.workers)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    print(f"{counts['killed']} killed, {counts['survived']} survived, {counts['refused']} refused by the compiler")


if __name__ == "__main__":
    main()
