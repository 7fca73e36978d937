# What other systems are given keeps to the published schema: schema.py vordane-tools SOURCES. The validator and the
# reader of the identifiers are nobody's of ours.
import json
import pathlib
import sqlite3
import subprocess
import sys
import tempfile

import jsonschema

tool, sources = sys.argv[1], pathlib.Path(sys.argv[2])
receipts = jsonschema.Draft202012Validator(
    json.loads((sources / "docs/schemas/receipts.schema.json").read_text(encoding="utf-8")))
receipts.check_schema(receipts.schema)
schema = json.loads((sources / "docs/schemas/faults.schema.json").read_text(encoding="utf-8"))
jsonschema.Draft202012Validator.check_schema(schema)
doctors = jsonschema.Draft202012Validator(
    json.loads((sources / "docs/schemas/doctor.schema.json").read_text(encoding="utf-8")))
doctors.check_schema(doctors.schema)
folder = tempfile.TemporaryDirectory()  # goes with the process
work = pathlib.Path(folder.name)
faults = work / "made/ADDINS/DATABASE/FAULT.MDB"


def run(*arguments):
    done = subprocess.run([tool, *map(str, arguments)], stdout=subprocess.PIPE, check=True, timeout=120)
    return done.stdout.decode("utf-8")


def form(name):
    # The named form alone: one of several would not say which name is missing.
    return jsonschema.Draft202012Validator({"$ref": f"#/$defs/{name}", "$defs": schema["$defs"]})


def identifier(fault):
    mark = 0xCBF29CE484222325
    for name in ("exchange", "kind", "class", "processor", "description"):
        for byte in fault[name].encode("utf-16-le") + b"\xff\xff":
            mark = (mark ^ byte) * 0x100000001B3 % 2**64
    return f"{fault['number']}-{mark:016x}"


def doctor(*arguments):
    done = subprocess.run([tool, "doctor", work / "made", "--json", *arguments], stdout=subprocess.PIPE, timeout=120)
    said = json.loads(done.stdout.decode("utf-8"))
    doctors.validate(said)
    assert done.returncode == (1 if said["findings"] else 0), said
    return said


def keeps_to(name, document):
    form(name).validate(document)
    jsonschema.Draft202012Validator(schema).validate(document)
    # And the schema would notice what is missing or of another type.
    for key in document:
        less = {other: value for other, value in document.items() if other != key}
        assert not form(name).is_valid(less), f"{name} without {key} passes"
        assert not form(name).is_valid({**document, key: [{}]}), f"{name} with another {key} passes"


run("suite", work / "made", "--language", "en", "--source", sources / "data")
with sqlite3.connect(faults) as file:
    file.execute("insert into PBXList (PBXName, TimeStamp, MJ, MN) values ('Büro 電話', '2026-11-20 10:00:00', -1, 0)")
    file.execute("insert into PBXList (PBXName, TimeStamp, MJ, MN) values ('PBX-2', '2026-11-21 10:00:00', 0, 0)")
    for row in [
        (1, "01", "MJ", "MP   ", "2026/11/20 09:00", "Line down\r\nUnit \"3\"\r\n[01 02]"),
        (1, "3B", "MN", "LP 1", "2026/11/20 09:30", "障害 \\ \x1b[31m"),
        (2, "", "", "", "", ""),
    ]:
        file.execute("insert into FaultDisplay (ID, Fault, Alarm, CPU, Date, Description) values (?,?,?,?,?,?)", row)
file.close()

listed = json.loads(run("list", faults, "--json"))
keeps_to("list", listed)
assert [fault["number"] for fault in listed["faults"]] == [3, 2, 1], listed["faults"]
assert [exchange["exchange"] for exchange in listed["exchanges"]] == ["PBX-2", "Büro 電話"], listed["exchanges"]
for fault in listed["faults"]:
    keeps_to("fault", fault)
    assert fault["id"] == identifier(fault), fault
chosen = json.loads(run("list", faults, "--json", "--class", "mj", "--exchange", "büro 電話", "--since", "2026"))
assert [fault["number"] for fault in chosen["faults"]] == [1], chosen
keeps_to("list", json.loads(run("list", faults, "--json", "--kind", "FF")))

run("export", faults, "--json", work / "tables", "--class", "MN", "--exchange", "Büro 電話")
tables = {file.name: json.loads(file.read_text(encoding="utf-8")) for file in (work / "tables").iterdir()}
assert sorted(tables) == ["FaultDisplay.json", "PBXList.json"], tables
for table in tables.values():
    keeps_to("table", table)
assert [row[5] for row in tables["FaultDisplay.json"]["rows"]] == [2], tables

# Receipts of resets, written as the add-in writes them.
empty = json.loads(run("list", faults, "--receipts", "--json"))
receipts.validate(empty)
assert empty["receipts"] == [], empty
with sqlite3.connect(faults) as file:
    file.execute("CREATE TABLE VordaneReceipts (Number INTEGER PRIMARY KEY, Moment TEXT NOT NULL, Exchange TEXT NOT NULL, "
                 "Person TEXT NOT NULL, Workstation TEXT NOT NULL, Major INTEGER, Minor INTEGER, Outcome TEXT NOT NULL, "
                 "Code INTEGER, Answered INTEGER NOT NULL)")
    file.execute("CREATE TABLE VordaneReceiptEntries (Receipt INTEGER NOT NULL, Place INTEGER NOT NULL, Command TEXT NOT "
                 "NULL, First TEXT NOT NULL, Second TEXT NOT NULL, Extra TEXT NOT NULL, PRIMARY KEY (Receipt, Place)) "
                 "WITHOUT ROWID")
    for row in [("2026-11-20 21:14:05", "Büro 電話", "anna", "STATION-3", 1, 0, "confirmed", None, 1),
                ("2026-11-20 21:15:05", "Büro 電話", "anna", "STATION-3", None, None, "error code", 61, 0)]:
        file.execute("insert into VordaneReceipts (Moment, Exchange, Person, Workstation, Major, Minor, Outcome, Code, "
                     "Answered) values (?,?,?,?,?,?,?,?,?)", row)
    file.execute("insert into VordaneReceiptEntries values (1, 1, 'EA1', '00', 'CCC', 'OK')")
file.close()
kept = json.loads(run("list", faults, "--receipts", "--json", "--exchange", "büro 電話"))
receipts.validate(kept)
assert [receipt["number"] for receipt in kept["receipts"]] == [2, 1], kept
assert kept["receipts"][1]["answer"] == [{"command": "EA1", "first": "00", "second": "CCC", "extra": "OK"}], kept
for receipt in kept["receipts"]:
    for key in receipt:
        less = {other: value for other, value in receipt.items() if other != key}
        assert not receipts.is_valid({**kept, "receipts": [less]}), f"a receipt without {key} passes"
        assert not receipts.is_valid({**kept, "receipts": [{**receipt, key: [{}]}]}), f"another {key} passes"

# Another program has added faults, so the index is not theirs: named, and mended when that is asked for.
said = doctor()
assert [finding["remedy"] for finding in said["findings"]] == ["make the index of the faults anew"], said
assert not doctors.is_valid({**said, "findings": [{**said["findings"][0], "weight": "heavy"}]})
assert not doctors.is_valid({key: said[key] for key in said if key != "mended"})
said = doctor("--fix", "--yes")
assert said["mended"] == ["make the index of the faults anew"] and said["findings"] == [], said
