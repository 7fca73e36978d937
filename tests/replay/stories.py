# Every story of the window with a trace, and each trace made ready to be played again.
# stories.py STORIES TESTS ONE_IN: the stories of one in so many.
import os
import subprocess
import sys
import tempfile

stories, tests, one_in = sys.argv[1:]
share = {"GTEST_TOTAL_SHARDS": one_in, "GTEST_SHARD_INDEX": "0"}
with tempfile.TemporaryDirectory() as folder:
    for program, chosen, own in ((stories, "*", {**share, "VORDANE_TRACED": folder}),
                                 (tests, "ReplayStories.*", {"VORDANE_TRACES": folder, "VORDANE_ONE_IN": one_in})):
        done = subprocess.run([program, "--gtest_brief=1", f"--gtest_filter={chosen}"],
                              env={**os.environ, **own}, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              timeout=500)
        if done.returncode != 0:
            sys.exit(done.stdout.decode("utf-8", "replace")[-8000:])
print(done.stdout.decode("utf-8", "replace"))
