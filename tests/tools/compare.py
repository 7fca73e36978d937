#!/usr/bin/env python3
"""Holds what bench/compare says of two results: better and worse only where no run of the two overlaps the other's
median, whichever side is the better one.

    compare.py COMPARE
"""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

COMPARE = sys.argv.pop(1)


def row(work, better, ratios, where="native"):
    return {"where": where, "work": work, "baseline": "bare", "better": better, "ratios": ratios,
            "ours": ratios, "baselines": [1] * len(ratios)}


class Compare(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def written(self, name, rows, quick=False):
        first = {"commit": name, "date": "2026-01-02T03:04:05Z", "quick": quick}
        path = self.folder / name
        path.write_text("".join(json.dumps(line) + "\n" for line in [first, *rows]))
        return path

    def compare(self, *files):
        return subprocess.run([COMPARE, *map(str, files)], capture_output=True, text=True)

    def of(self, better, before, after):
        """The verdict on one line, and the exit code."""
        said = self.compare(self.written("a", [row("work", better, before)]),
                            self.written("b", [row("work", better, after)]))
        return said.stdout.split(" ")[0], said.returncode

    def test_a_share_that_fell_is_worse(self):
        self.assertEqual(self.of("more", [0.5, 0.51, 0.52], [0.4, 0.41, 0.42]), ("worse", 1))

    def test_a_share_that_rose_is_better(self):
        self.assertEqual(self.of("more", [0.4, 0.41, 0.42], [0.5, 0.51, 0.52]), ("better", 0))

    def test_a_multiple_that_rose_is_worse(self):
        self.assertEqual(self.of("less", [1.0, 1.1, 1.2], [1.3, 1.4, 1.5]), ("worse", 1))

    def test_a_multiple_that_fell_is_better(self):
        self.assertEqual(self.of("less", [1.3, 1.4, 1.5], [1.0, 1.1, 1.2]), ("better", 0))

    def test_runs_that_touch_the_others_median_are_noise(self):
        self.assertEqual(self.of("less", [1.0, 1.1, 1.4], [1.3, 1.4, 1.5]), ("noise", 0))
        self.assertEqual(self.of("less", [1.0, 1.1, 1.2], [1.1, 1.4, 1.5]), ("noise", 0))
        self.assertEqual(self.of("more", [1.0, 1.1, 1.4], [1.3, 1.4, 1.5]), ("noise", 0))

    def test_ends_that_overlap_beyond_the_medians_are_no_noise(self):
        self.assertEqual(self.of("less", [1.0, 1.1, 1.35], [1.3, 1.4, 1.5]), ("worse", 1))

    def test_lines_of_one_result_alone_are_named(self):
        said = self.compare(self.written("a", [row("old", "more", [1]), row("both", "more", [1])]),
                            self.written("b", [row("both", "more", [1]), row("new", "more", [1], "x64")]))
        self.assertEqual(said.stdout.splitlines(),
                         ["gone   | native | old | bare | 1 (1 to 1) | -",
                          "noise  | native | both | bare | 1 (1 to 1) | 1 (1 to 1)",
                          "added  | x64 | new | bare | - | 1 (1 to 1)",
                          "0 worse"])

    def test_what_cannot_be_compared_is_said(self):
        good = self.written("a", [row("work", "more", [1])])
        quick = self.written("b", [row("work", "more", [1])], quick=True)
        broken = self.folder / "broken"
        broken.write_text('{"commit":')
        for files, sentence in [((good,), "compare: usage: bench/compare BEFORE AFTER"),
                                ((good, quick), "compare: one of the two was measured with --quick"),
                                ((good, "nowhere"), "compare: nowhere is no file and no commit that was measured here"),
                                ((good, broken), f"compare: {broken} holds no results: ")]:
            said = self.compare(*files)
            self.assertEqual(said.returncode, 2)
            self.assertTrue(said.stderr.startswith(sentence), said.stderr)


if __name__ == "__main__":
    unittest.main()
