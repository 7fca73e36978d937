# What each test that failed had to say, shortly: from CTest's own logs, so that the end of a long run tells why.
#
#   awk -f why-failed.awk LastTestsFailed.log LastTest.log
#
# The first log names the tests that failed, the second has the output of every test.
FNR == NR { sub(/^[0-9]+:/, ""); failed[$0]; next }
/^[0-9]+\/[0-9]+ Test(ing)?: / { name = $0; sub(/^[^:]*: /, "", name); lines = 0; within = 0 }
/^<end of output>$/ {
  if (within && name in failed) {
    print "== why " name " failed"
    first = lines > most ? lines - most + 1 : 1
    for (i = lines; i >= 1; --i) if (line[i] ~ /Failure$|^FAILED|can not start|rror:/) first = i
    for (i = first; i < first + most && i <= lines; ++i) print line[i]
  }
  within = 0
}
/^Output:$/ && !within { within = 1; getline; next }
within { line[++lines] = substr($0, 1, 200) }
BEGIN { most = 12 }
