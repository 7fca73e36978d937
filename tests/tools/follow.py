# `vordane-tools follow` as a process: killed again and again while lists arrive, with servers that are slow, gone or break
# off. What it told is read by nobody's code of ours: follow.py vordane-tools SOURCES. VORDANE_FOLLOW_KILLS=n kills it n
# times in each of the two stories.
import contextlib
import http.server
import json
import os
import pathlib
import random
import re
import socket
import sqlite3
import subprocess
import sys
import tempfile
import threading

import jsonschema

tool, sources = sys.argv[1], pathlib.Path(sys.argv[2])
command = ["wine", tool] if tool.endswith(".exe") else [tool]
kills = int(os.environ.get("VORDANE_FOLLOW_KILLS", "25"))
longest = 2 if len(command) > 1 else 0.1  # seconds that a process lives until it is killed: Wine starts slowly
schema = json.loads((sources / "docs/schemas/faults.schema.json").read_text(encoding="utf-8"))
validator = jsonschema.Draft202012Validator(schema)
folder = tempfile.TemporaryDirectory()  # goes with the process
work = pathlib.Path(folder.name)
patience = 60


def run(*arguments, code=0):
    # Into files: what Wine leaves running would keep a pipe open.
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as errors:
        ended = subprocess.run([*command, *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=out, stderr=errors, timeout=patience)
        said = []
        for file in (out, errors):
            file.seek(0)
            said.append(file.read().decode("utf-8").replace("\r\n", "\n"))
    assert ended.returncode == code, f"{arguments} ends with {ended.returncode}: {said[1]}"
    return tuple(said)


def start(*arguments):
    errors = tempfile.TemporaryFile()
    process = subprocess.Popen([*command, *map(str, arguments)], stdin=subprocess.DEVNULL, stderr=errors)
    process.errors = errors
    return process


def errors_of(process):
    process.errors.seek(0)
    return process.errors.read().decode("utf-8")


class Exchange:
    """Stores lists as the add-in does: a transaction for each, the lamps behind it."""

    def __init__(self, name):
        run("suite", work / name, "--language", "en", "--source", sources / "data")
        self.path = work / name / "ADDINS/DATABASE/FAULT.MDB"
        self.file = sqlite3.connect(self.path, isolation_level=None, timeout=patience)
        self.file.execute("pragma journal_mode = wal")
        self.file.execute("insert into PBXList (PBXName, TimeStamp, MJ, MN) values ('PBX-1', '2026-11-20 10:00:00', 0, 0)")
        self.faults = 0

    def store(self, count, lamps):
        self.file.execute("begin immediate")
        for _ in range(count):
            self.faults += 1
            self.file.execute(
                "insert into FaultDisplay (ID, Fault, Alarm, CPU, Date, Description) values (1, '01', 'MJ', 'MP   ',"
                " '2026/11/20 09:00', ?)", (f"Line down\r\nUnit \"{self.faults}\" ]\\ 障害\r\n",))
        self.file.execute("update PBXList set MJ = ?, MN = ?", lamps)
        self.file.execute("commit")
        self.lamps = [bool(lamp) for lamp in lamps]


class Server:
    """A syslog server over TCP. `ill` makes it break off every other connection without a word."""

    def __init__(self):
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.address = "127.0.0.1:%d" % self.listener.getsockname()[1]
        self.messages, self.connections, self.ill = [], 0, True
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        while True:
            connection, _ = self.listener.accept()
            self.connections += 1
            with connection, contextlib.suppress(ConnectionError):
                if self.ill and self.connections % 2 == 0:
                    connection.recv(100)
                    continue  # what comes further is refused with a reset
                said = b""
                while piece := connection.recv(65536):
                    said += piece
                self.messages += list(self.frames(said))

    @staticmethod
    def frames(said):
        while said:
            length, rest = said.split(b" ", 1)
            if len(rest) < int(length):
                return  # its sender was killed
            yield rest[: int(length)].decode("utf-8")
            said = rest[int(length):]


MESSAGE = re.compile(
    r"<(1[0-9]{2})>1 (\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ) ([!-~]{1,255}) vordane - (fault|lamps)"
    r" \[\4@(\d+)((?: [a-z]+=\"(?:[^\"\\\]]|\\[\"\\\]])*\")+)\] \ufeff(.*)", re.DOTALL)


def parsed(message):
    found = MESSAGE.fullmatch(message)
    assert found, message
    values = dict(re.findall(r' ([a-z]+)="((?:[^"\\\]]|\\["\\\]])*)"', found[6]))
    return found[4], {name: re.sub(r'\\(["\\\]])', r"\1", value) for name, value in values.items()}, found[7]


def kill_while_lists_arrive(exchange, *arguments):
    for number in range(kills):
        process = start("follow", exchange.path, *arguments)
        for _ in range(random.randrange(4)):
            exchange.store(random.randrange(1, 400), (random.randrange(2), random.randrange(2)))
        try:
            process.wait(random.random() * longest)
            sys.exit(f"follow ended by itself: {errors_of(process)}")
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


def into_a_file():
    exchange, lines, mark = Exchange("one"), work / "one.jsonl", work / "one.mark"
    exchange.store(1, (1, 0))
    kill_while_lists_arrive(exchange, "--mark", mark, "--to", lines)
    run("follow", exchange.path, "--mark", mark, "--to", lines, "--once")
    told = [json.loads(line) for line in lines.read_text(encoding="utf-8").splitlines()]
    for event in told:
        validator.validate(event)
    numbers = [event["number"] for event in told if event["event"] == "fault"]
    assert numbers == list(range(1, exchange.faults + 1)), f"{len(numbers)} told of {exchange.faults}"
    ids = [event["id"] for event in told]
    assert len(set(ids)) == len(ids)
    lamps = [event for event in told if event["event"] == "lamps"]
    assert [event["sequence"] for event in lamps] == list(range(1, len(lamps) + 1)), lamps
    assert [lamps[-1]["major"], lamps[-1]["minor"]] == exchange.lamps, (lamps[-1], exchange.lamps)
    for before, after in zip(lamps, lamps[1:]):
        assert (before["major"], before["minor"]) != (after["major"], after["minor"])
    listed = json.loads(run("list", exchange.path, "--json")[0])["faults"]
    assert {fault["id"] for fault in listed} <= set(ids)


def to_a_server():
    exchange, server, mark = Exchange("two"), Server(), work / "two.mark"
    exchange.store(1, (0, 1))
    kill_while_lists_arrive(exchange, "--mark", mark, "--tcp", server.address)
    server.ill = False
    run("follow", exchange.path, "--mark", mark, "--tcp", server.address, "--once", "--enterprise", "9")
    told, lamps = {}, {}
    for message in server.messages:
        kind, values, words = parsed(message)
        known = told.setdefault(values["id"], (values, words))
        assert known == (values, words), "the same id says something else"
        if kind == "lamps":
            lamps[int(values["sequence"])] = [values["major"] == "1", values["minor"] == "1"]
    faults = sorted(int(values["number"]) for values, _ in told.values() if "number" in values)
    assert faults == list(range(1, exchange.faults + 1)), f"{len(faults)} arrived of {exchange.faults}"
    values, words = told[next(id for id in told if id.startswith("1-"))]
    assert words == 'PBX-1: 2026/11/20 09:00 MJ MP    01 Line down - Unit "1" ]\\ 障害', words
    assert values["processor"] == "MP   " and values["exchange"] == "PBX-1", values
    assert lamps[max(lamps)] == exchange.lamps, (lamps, exchange.lamps)
    print(f"{exchange.faults} faults in {len(server.messages)} messages over {server.connections} connections")


def beside_the_add_in():
    """While it tells, which takes as long as the server likes, it holds nothing of the file."""
    exchange, mark = Exchange("three"), work / "three.mark"
    exchange.store(3, (0, 0))
    with socket.create_server(("127.0.0.1", 0)) as listener:
        process = start("follow", exchange.path, "--mark", mark, "--tcp", "127.0.0.1:%d" % listener.getsockname()[1], "--once")
        connection, _ = listener.accept()
        while connection.recv(65536):
            pass
        # All is said and nothing answered: another process may have the file for itself alone.
        exchange.file.execute("pragma busy_timeout = 0")
        assert exchange.file.execute("pragma journal_mode = delete").fetchone() == ("delete",)
        exchange.file.execute("begin exclusive")
        exchange.file.execute("rollback")
        connection.close()
        assert process.wait(patience) == 0, errors_of(process)
    assert json.loads(mark.read_text())["reached"] == 3


def what_is_wrong_is_said():
    exchange, other = Exchange("four"), Exchange("five")
    exchange.store(5, (0, 0))
    other.store(3, (0, 0))
    mark = work / "four.mark"
    out, errors = run("follow", exchange.path, "--mark", mark, "--once")
    assert out.count("\n") == 6 and not errors, (out, errors)
    assert run("follow", exchange.path, "--mark", mark, "--once") == ("", "")
    said = run("follow", other.path, "--mark", mark, "--once", code=1)
    assert said[0] == "" and "The mark is of another file" in said[1], said
    kept = mark.read_text()
    assert json.loads(kept)["reached"] == 5
    said = run("follow", exchange.path, "--mark", work / "gone.mark", "--tcp", "127.0.0.1:1", "--once", code=1)
    assert "127.0.0.1 port 1: " in said[1] and "6 message(s) wait and are sent again" in said[1], said
    mark.write_text(kept[:-20])
    said = run("follow", exchange.path, "--mark", mark, "--once", code=1)
    assert "this is no mark of 'follow', or only a part of one" in said[1], said
    assert mark.read_text() == kept[:-20]
    said = run("follow", work / "four/ADDINS/DATABASE/VORDANE.LNG", "--mark", work / "x", "--once", code=1)
    assert "it lacks a table that is needed" in said[1], said
    said = run("follow", work / "none.mdb", "--mark", work / "x", "--once", code=1)
    assert "there is no such file" in said[1], said
    (work / "store.dsn").write_text("[ODBC]\nDRIVER=none\n")
    said = run("follow", work / "store.dsn", "--mark", work / "y", "--once", code=1)
    assert "this names a store on a server" in said[1] and not (work / "y").exists(), said
    said = run("follow", exchange.path, "--mark", work / "y", "--tcp", "nowhere", "--once", code=1)
    assert "nowhere: this is no address. Write it as HOST:PORT" in said[1], said
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as server:
        server.bind(("127.0.0.1", 0))
        run("follow", other.path, "--mark", work / "udp.mark", "--udp", "127.0.0.1:%d" % server.getsockname()[1], "--once")
        kinds = [parsed(server.recv(65536).decode("utf-8"))[0] for _ in range(4)]
    assert kinds == ["fault"] * 3 + ["lamps"], kinds


def a_server_that_never_answers():
    """It is given up, nothing counts as told, and the mark is nobody else's meanwhile."""
    exchange, mark = Exchange("six"), work / "six.mark"
    exchange.store(1, (0, 0))
    with socket.create_server(("127.0.0.1", 0)) as listener:
        process = start("follow", exchange.path, "--mark", mark, "--tcp", "127.0.0.1:%d" % listener.getsockname()[1], "--once")
        connection, _ = listener.accept()
        said = run("follow", exchange.path, "--mark", mark, "--once", code=1)
        assert "another 'follow' has this mark" in said[1] and said[0] == "", said
        assert process.wait(patience) == 1
        connection.close()
    errors = errors_of(process)
    assert "it answers too slowly. 2 message(s) wait and are sent again" in errors, errors
    assert run("follow", exchange.path, "--mark", mark, "--once")[0].count("\n") == 2


def a_server_that_ends_before_it_was_told_to():
    """Its end says nothing of what it has taken, which is less than was sent."""
    exchange, mark = Exchange("eight"), work / "eight.mark"
    exchange.store(250, (0, 0))
    with socket.socket() as listener:
        listener.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 2048)
        listener.bind(("127.0.0.1", 0))
        listener.listen()
        process = start("follow", exchange.path, "--mark", mark, "--tcp", "127.0.0.1:%d" % listener.getsockname()[1], "--once")
        connection, _ = listener.accept()
        connection.shutdown(socket.SHUT_WR)
        assert process.wait(patience) == 1
        connection.close()
    assert "251 message(s) wait and are sent again" in errors_of(process), errors_of(process)
    assert json.loads(mark.read_text())["told"] is None, mark.read_text()


class Hook(http.server.BaseHTTPRequestHandler):
    """Takes every event but the one that is its turn to be refused."""
    taken, refused = [], [3]

    def do_POST(self):
        event = json.loads(self.rfile.read(int(self.headers["Content-Length"])))
        refuse = len(self.taken) in self.refused
        if refuse:
            self.refused.clear()
        else:
            self.taken.append((self.headers["Content-Type"], event["id"]))
        self.send_response(503 if refuse else 204)
        self.end_headers()

    def log_message(self, *_):
        pass


def the_documented_web_hook():
    exchange = Exchange("seven")
    exchange.store(5, (0, 1))
    page = (sources / "docs/for-other-systems.md").read_text(encoding="utf-8")
    script = next(block for block in re.findall(r"```sh\n(#!/bin/bash\n.*?)```", page, re.DOTALL) if "curl" in block)
    server = http.server.HTTPServer(("127.0.0.1", 0), Hook)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    script = script.replace("https://hooks.example.net/faults", "http://127.0.0.1:%d/" % server.server_port)
    script = script.replace("vordane-tools", " ".join(command)).replace("FAULT.MDB", str(exchange.path))
    codes = [subprocess.run(["bash", "-c", script], cwd=work, capture_output=True, timeout=patience).returncode for _ in range(3)]
    assert codes == [1, 0, 0], codes
    told = [json.loads(line)["id"] for line in (work / "hook.jsonl").read_text(encoding="utf-8").splitlines()]
    assert len(told) == 6 and Hook.taken == [("application/json", id) for id in told], Hook.taken


into_a_file()
to_a_server()
the_documented_web_hook()
beside_the_add_in()
what_is_wrong_is_said()
a_server_that_never_answers()
a_server_that_ends_before_it_was_told_to()
