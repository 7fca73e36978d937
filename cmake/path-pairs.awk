# Reads Debian's DerivedAge.txt and then UnicodeData.txt and prints, as C++ initialisers {letter, capital}, the
# pairs of the Basic Multilingual Plane that file systems fold too: the small letter of the capital is the letter
# again (not so with the dotless i, the micro sign, the long s, the final sigma), and both letters are in Unicode
# 5.0, the last version that the tables of Windows' file systems hold (the Georgian capitals are not).
function value(hexadecimal,   i, number) {
  number = 0
  for (i = 1; i <= length(hexadecimal); ++i)
    number = number * 16 + index("0123456789ABCDEF", substr(hexadecimal, i, 1)) - 1
  return number
}
BEGIN { FS = "[ \t]*;[ \t]*" }
FNR == 1 { ++file }
file == 1 && /^[0-9A-F]/ {
  split($1, range, /\.\./)
  split($2, age, /[ \t#]+/)
  if (length(range[1]) > 4 || age[1] + 0 <= 5.0) next
  last = range[2] == "" ? value(range[1]) : value(range[2])
  for (code = value(range[1]); code <= last; ++code) young[code] = 1
  next
}
file == 2 {
  letters[++count] = $1
  upper[$1] = $13
  lower[$1] = $14
}
END {
  for (i = 1; i <= count; ++i) {
    letter = letters[i]
    capital = upper[letter]
    if (length(letter) == 4 && length(capital) == 4 && lower[capital] == letter &&
        !(value(letter) in young) && !(value(capital) in young))
      printf "{0x%s, 0x%s},\n", letter, capital
  }
}
