#!/bin/bash
# vordane-tools decode, byte for byte. Arguments: the program that makes databases, then vordane-tools. Windows
# programs are started under Wine.
set -u
make_database=("$1")
tool=("$2")
case "$2" in *.exe) make_database=(wine "$1") tool=(wine "$2") ;; esac
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

for n in $(seq 0 164); do printf '%s\tM%s\n' "$n" "$n"; done > "$work/messages.tsv"
{
  for i in $(seq 0 16); do printf 'cboFK01\t%s\tK01.%s\ncboFK0A\t%s\tK0A.%s\n' "$i" "$i" "$i" "$i"; done
  printf 'cboFK28\t1\tone\n'
} > "$work/lists.tsv"

decode() { "${tool[@]}" decode --messages "$work/messages.tsv" --lists "$work/lists.tsv" "$@"; }

# check NAME EXPECTED-OUTPUT INPUT [OPTION ...]; the output as it stands, the input as a printf format.
check() {
  local name=$1
  printf '%s' "$2" > "$work/expected"
  printf "$3" > "$work/input"
  shift 3
  decode "$@" < "$work/input" > "$work/got" 2> "$work/errors"
  local code=$?
  if [ $code -ne 0 ] || ! cmp -s "$work/expected" "$work/got"; then
    echo "FAILED: $name (exit code $code)"
    head -c 400 "$work/expected" | od -c
    head -c 400 "$work/got" | od -c
    cat "$work/errors"
    failed=1
  fi
}

# refuse NAME EXIT-CODE PART-OF-THE-ERROR ARGUMENT ...
refuse() {
  local name=$1 expected=$2 part=$3
  shift 3
  "${tool[@]}" decode "$@" < /dev/null > "$work/got" 2> "$work/errors"
  local code=$?
  if [ $code -ne "$expected" ] || [ -s "$work/got" ] || ! grep -qF -- "$part" "$work/errors"; then
    echo "FAILED: $name (exit code $code)"
    cat "$work/got" "$work/errors"
    failed=1
  fi
}

nl=$'\n' tab=$'\t'
title='M15\r\n\r\nM5 M6' # of kind 02, up to its data

check 'a record, first and second data' "${title}0A 0BM7$nl" '02\t0A\t0B\n'
check 'no line, no output' '' ''
check 'missing fields are empty' "$title M7${nl}M8\r\n\r\nM5 M6 M7$nl" '02\n\n'
check 'a last line without its end counts' "${title}0A M7$nl" '02\t0A'
check 'a CR belongs to the last field' "${title}0A 0B\rM7$nl" '02\t0A\t0B\r\n'
check 'a CR alone ends nothing' "${title}0A\r0B M7$nl" '02\t0A\r0B\n'
check 'nothing is trimmed' "$title 0A    0B M7$nl" '02\t 0A  \t 0B \n'
check 'a further TAB is part of the second data' "${title}0A 0B${tab}0CM7$nl" '02\t0A\t0B\t0C\n'
check 'a backslash is doubled' "${title}a\\\\b M7$nl" '02\ta\\b\n'
check 'letters beyond ASCII stay' "${title}Ж日🔔 M7$nl" '02\tЖ日🔔\n'
check 'positions count UTF-16' "M30\r\nK0A.0 M6M31 C2DM7\r\nM5 M6🔔 0C 2D M7$nl" '0A\t🔔 0C 2D\n'
check 'fields are wide' "M28\r\n M6M23 197M7\r\nM5 M6C5 M7$nl" '08\tC5\n'
check 'unless narrow' "M28\r\n M6M23 05M7\r\nM5 M6C5 M7$nl" '08\tC5\n' --narrow
check 'items that no line gives have no text' "M54\r\n M6M53 02  M7\r\nM5 M602 00 M7$nl" '28\t02 00\n'
check 'a missing list shows nothing' "$nl" '09\t00\n'
check 'proof' "M30\r\nK0A.3 M6M31 C2DM7\r\nM5 M603 4C 2D M7
${tab}1-2${tab}03${tab}K0A.3
${tab}5-5${tab}C${tab}C
${tab}7-8${tab}2D${tab}2D
${tab}1-9${tab}03 4C 2D ${tab}03 4C 2D $nl" '0A\t03 4C 2D\n' --explain

printf '02\t0\0A\n' | decode > "$work/got"
printf '%s0\0A M7\n' "$title" | cmp - "$work/got" || { echo 'FAILED: a NUL is a character'; failed=1; }

# More than a block of input and output, and a line longer than a block.
long=$(printf '%0600000d' 0)
printf '02\t%s\n02\t0A\n' "$long" | decode > "$work/got"
printf '%s%s M7\n%s0A M7\n' "$title" "$long" "$title" | cmp - "$work/got" || { echo 'FAILED: a long line'; failed=1; }
for n in $(seq 20000); do printf '01\t%02X 00\n' $((n % 16)); done > "$work/many"
for n in $(seq 20000); do printf 'M9\\r\\nM14 K01.%s\\r\\nM5 M6%02X 00 M7\n' $((n % 16)) $((n % 16)); done > "$work/expected"
decode < "$work/many" > "$work/got" || failed=1
cmp "$work/expected" "$work/got" || failed=1

refuse 'no texts' 2 usage
refuse 'lists without messages' 2 usage --lists "$work/lists.tsv"
refuse 'two sources' 2 usage --language x --messages "$work/messages.tsv"
refuse 'an unknown option' 2 usage --messages "$work/messages.tsv" --wide
refuse 'an option without its file' 2 usage --messages
refuse 'no such file' 1 "$work/none.tsv" --messages "$work/none.tsv"
printf '1\tone\nx\ttwo\n' > "$work/bad.tsv"
refuse 'a number that is none' 1 "$work/bad.tsv:2: x is no number" --messages "$work/bad.tsv"
printf '1\tone\n1\ttwo\n' > "$work/bad.tsv"
refuse 'a message twice' 1 "$work/bad.tsv:2: message 1 stands twice" --messages "$work/bad.tsv"
printf 'cboFK01\t0\ta\ncbofk01\t0\tb\n' > "$work/bad.tsv"
refuse 'an item twice' 1 "$work/bad.tsv:2: item 0" --messages "$work/messages.tsv" --lists "$work/bad.tsv"
printf 'cboFK01\t-1\ta\n' > "$work/bad.tsv"
refuse 'a negative place' 1 "$work/bad.tsv:1: -1 is no number" --messages "$work/messages.tsv" --lists "$work/bad.tsv"
printf 'drpOther\t0\ta\n' > "$work/other.tsv"
refuse 'another list is only mentioned' 0 'other.tsv:1: "drpOther"' --messages "$work/messages.tsv" --lists "$work/other.tsv"


# The same texts from a language database. Other windows' lists and other controls do not count, a Null text
# is empty, and rows stand in the order of their list places.
{
  echo "PRAGMA encoding = 'UTF-16le'; BEGIN;"
  echo "CREATE TABLE tMessages (ID INTEGER PRIMARY KEY, Caption TEXT);"
  for n in $(seq 0 164); do echo "INSERT INTO tMessages VALUES ($n, 'M$n');"; done
  echo "UPDATE tMessages SET Caption = NULL WHERE ID = 41;"
  echo "CREATE TABLE tComboBoxDT (FormName TEXT, ObjectName TEXT, [Index] INTEGER, ListIndex INTEGER,"
  echo "  List TEXT, ItemData INTEGER, Visible INTEGER NOT NULL DEFAULT 0);"
  for i in 2 0 1; do
    echo "INSERT INTO tComboBoxDT VALUES ('dlgFaultDisplay', 'cboFK03', -1, $i, 'Список $i', 0, 0);"
    echo "INSERT INTO tComboBoxDT VALUES ('dlgFaultDisplay', 'drpOther', -1, $i, 'other', 0, 0);"
    echo "INSERT INTO tComboBoxDT VALUES ('dlgOther', 'cboFK09', -1, $i, 'other', 0, 0);"
  done
  echo "COMMIT;"
} | "${make_database[@]}" "$work/VORDANE.LNG" || failed=1

language() { "${tool[@]}" decode --language "$work/VORDANE.LNG" "$@"; }
printf '03\t01\n03\t09\n21\t05\n09\t01\n08\tC5\n' > "$work/input"
printf '%s\n' 'M16\r\nM17 Список 1\r\nM5 M601 M7' 'M16\r\nM17 Список 2\r\nM5 M609 M7' 'M40\r\n M6 5M7\r\nM5 M605 M7' '' \
  'M28\r\n M6M23 05M7\r\nM5 M6C5 M7' > "$work/expected"
language --narrow < "$work/input" > "$work/got" || { echo 'FAILED: a language database'; failed=1; }
diff "$work/expected" "$work/got" || failed=1
refuse 'no such language' 1 "$work/none.LNG" --language "$work/none.LNG"
refuse 'a language that is none' 1 "$work/messages.tsv" --language "$work/messages.tsv"
printf '\0\1\0\0Standard Jet DB\0' > "$work/access.LNG"
refuse 'an Access file' 1 'has to be imported first' --language "$work/access.LNG"
echo 'CREATE TABLE tMessages (ID INTEGER PRIMARY KEY, Caption TEXT);' | "${make_database[@]}" "$work/half.LNG"
refuse 'a language without lists' 1 "$work/half.LNG" --language "$work/half.LNG"

if [ -e /dev/full ]; then
  printf '02\n' | decode > /dev/full 2> "$work/errors" && { echo 'FAILED: a full disk goes unnoticed'; failed=1; }
  grep -q "can't be written" "$work/errors" || { echo 'FAILED: a full disk is not named'; failed=1; }
fi
exit $failed
