# Prints a complete shader with each include file's text as one line that names the file:
#
#   awk -f cut_includes.awk INCLUDE_FILE... SHADER
#
# Only a text that is the whole file, its #include lines left out, is cut: whatever else stands in the shader stays.

FNR == 1 {
  name = FILENAME
  sub(/.*\//, "", name)
  isInclude = ++files < ARGC - 1
}
isInclude && /^[ \t]*#include/ { next }
isInclude { text[name, ++length_[name]] = $0; next }
{ shader[++lines] = $0 }

function stands(file, at,   i) {
  for (i = 1; i <= length_[file]; ++i)
    if (shader[at + i - 1] != text[file, i]) return 0
  return length_[file] > 0
}

END {
  for (at = 1; at <= lines; ++at) {
    found = ""
    for (file in length_)
      if (shader[at] == text[file, 1] && stands(file, at)) found = file
    if (found == "") {
      print shader[at]
    } else {
      print "// the text of " found
      at += length_[found] - 1
    }
  }
}
