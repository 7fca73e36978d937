# Every story of the window with a trace, and each trace made ready to be played again. stories.py STORIES TESTS
import os
import subprocess
import sys
import tempfile

stories, tests = sys.argv[1:]
with tempfile.TemporaryDirectory() as folder:
    for program, variable, chosen in ((stories, "VORDANE_TRACED", "*"), (tests, "VORDANE_TRACES", "ReplayStories.*")):
        done = subprocess.run([program, "--gtest_brief=1", f"--gtest_filter={chosen}"],
                              env={**os.environ, variable: folder}, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              timeout=500)
        if done.returncode != 0:
            sys.exit(done.stdout.decode("utf-8", "replace")[-8000:])
print(done.stdout.decode("utf-8", "replace"))
