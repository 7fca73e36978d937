# Reads a saved list back as other programs do and compares it, line for line, with the rows that were shown:
# read_back.py DIR, where DIR holds list.csv, list.html, list.json and `shown`, rows ended by U+001E, columns by
# U+001F: the fault, its number, its note, who wrote that and when.
import csv
import html.parser
import json
import pathlib
import sys

import jsonschema

folder = pathlib.Path(sys.argv[1])
shown = [row.split("\x1f")[:-1] for row in (folder / "shown").read_bytes().decode("utf-8").split("\x1e")[:-1]]
headings, shown = shown[0], shown[1:]
FORMULA = tuple("=+-@\t\r\n\uff1d\uff0b\uff0d\uff20")


def same(what, found, expected):
    if found != expected:
        for number, (a, b) in enumerate(zip(found, expected)):
            if a != b:
                sys.exit(f"{what}, row {number}:\n{a!r}\nis not\n{b!r}")
        sys.exit(f"{what}: {len(found)} rows, not {len(expected)}")


def disarmed(text):
    return "'" + text if text.startswith(FORMULA) else text


def of_csv():
    raw = (folder / "list.csv").read_bytes()
    assert raw.startswith(b"\xef\xbb\xbf"), "no signature"
    with open(folder / "list.csv", encoding="utf-8-sig", newline="") as file:
        rows = list(csv.reader(file, strict=True))
    same("CSV headings", rows[:1], [headings])
    same("CSV", rows[1:], [[disarmed(text) for text in row[:5]] + row[5:6] + [disarmed(text) for text in row[6:]] for row in shown])


def of_json():
    saved = json.loads((folder / "list.json").read_text(encoding="utf-8"))
    assert saved["format"] == "vordane faults" and saved["version"] == 1, saved["format"]
    sources = pathlib.Path(__file__).parents[2]
    schema = json.loads((sources / "docs/schemas/faults.schema.json").read_text(encoding="utf-8"))
    form = {"$ref": "#/$defs/saved", "$defs": schema["$defs"]}
    jsonschema.Draft202012Validator(form).validate(saved)
    keys = ["kind", "class", "time", "processor", "description", "number", "note", "noteAuthor", "noteTime"]
    same("JSON", [[str(fault[key]) for key in keys] for fault in saved["faults"]], shown)


class Table(html.parser.HTMLParser):
    def __init__(self):
        super().__init__()
        self.head, self.rows, self.cell, self.hidden = [], [], None, False

    def handle_starttag(self, tag, attributes):
        if tag == "tr":
            self.rows.append([])
        if tag in ("td", "th"):
            self.cell = ""
        if tag == "br":
            self.cell += "\n"
        if tag == "span" and ("aria-hidden", "true") in attributes:
            self.hidden = True

    def handle_endtag(self, tag):
        if tag in ("td", "th"):
            self.rows[-1].append(self.cell)
            self.cell = None
        if tag == "span":
            self.hidden = False

    def handle_data(self, data):
        if self.cell is None:
            return
        if self.hidden:
            sign = {"▲ ": "MJ", "△ ": "MN"}[data]
            self.head.append(sign)
        else:
            self.cell += data


def of_page():
    table = Table()
    table.feed((folder / "list.html").read_bytes().decode("utf-8"))
    table.close()
    same("HTML headings", table.rows[:1], [headings[:7]])

    def seen(row):
        lines = row[4].replace("\r\n", "\n").replace("\r", "\n")
        note = row[6] + f"\n{row[7]} · {row[8]}" if row[6] else ""
        return [row[0], row[1].strip(" "), row[2], row[3], lines, row[5], note]

    same("HTML", table.rows[1:], [seen(row) for row in shown])
    classes = [row[1].strip(" ") for row in shown]
    same("signs", table.head, [word for word in classes if word in ("MJ", "MN")])


of_csv()
of_json()
of_page()
