# Reads Debian's UnicodeData.txt and prints the simple, one-for-one case mappings of the Basic
# Multilingual Plane as C++ initialisers: {letter, mapped}. `-v column=13` gives upper, 14 lower case.
BEGIN { FS = ";" }
length($1) == 4 && length($column) == 4 { printf "{0x%s, 0x%s},\n", $1, $column }
