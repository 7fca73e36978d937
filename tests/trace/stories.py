# Every story again with a trace: what hosts, exchanges and people see of it is the same, and each line keeps to the
# published schema. stories.py SOURCES PROGRAM...
import json
import os
import pathlib
import subprocess
import sys
import tempfile

import jsonschema

sources, programs = pathlib.Path(sys.argv[1]), sys.argv[2:]
schema = json.loads((sources / "docs/schemas/trace.schema.json").read_text(encoding="utf-8"))
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)


def shape(value):
    """What the schema can tell of a value: texts that differ only in their letters are alike to it."""
    if isinstance(value, dict):
        return {key: shape(part) for key, part in value.items()}
    if isinstance(value, list):
        return [shape(part) for part in value[:8]]
    return type(value).__name__


def lines_of(folder):
    for file in sorted(folder.iterdir()):
        assert file.name.startswith("trace-") and file.suffix == ".jsonl", file.name
        text = file.read_bytes().decode("utf-8")
        assert text.endswith("\n"), f"{file.name} ends in half a line"
        for line in text.split("\n")[:-1]:
            yield json.loads(line)


seen, known, count = set(), set(), 0
for program in programs:
    with tempfile.TemporaryDirectory() as folder:
        done = subprocess.run([program, "--gtest_brief=1"], env={**os.environ, "VORDANE_TRACED": folder},
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=500)
        if done.returncode != 0:
            sys.exit(done.stdout.decode("utf-8", "replace")[-8000:])
        for line in lines_of(pathlib.Path(folder)):
            count += 1
            seen.add(line["event"])
            alike = json.dumps([line["event"], line.get("as"), line.get("why"), line.get("step"), line.get("action"),
                                line.get("what"), shape(line)])
            if alike in known:
                continue
            known.add(alike)
            validator.validate(line)
            # And the schema would notice what is missing, foreign or of another type.
            for key in line:
                if key not in ("references", "answer", "changed", "error", "description", "source", "statement"):
                    less = {other: value for other, value in line.items() if other != key}
                    assert not validator.is_valid(less), f"{line} passes without {key}"
                assert not validator.is_valid({**line, key: [[[]]]}), f"{line} passes with another {key}"
            assert not validator.is_valid({**line, "foreign": 1}), f"{line} passes with a foreign name"

# What no story does stands in tests of its own; stories reach the window from behind, where nobody stands in front.
missing = set(schema["properties"]["event"]["enum"]) - seen - {"left out", "window", "person", "tick", "done"}
assert not missing, f"no story has told of {missing}"
print(f"{count} lines, {len(known)} shapes")
