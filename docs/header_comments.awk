# Converts the plain comments of a header to Doxygen comments, keeping line numbers so that
# Doxygen's warnings name the right lines. The first comment documents the file, a whole-line
# comment the declaration that follows, a trailing comment the declaration on its line. Indented
# lines of a comment become a verbatim block, or a code block when one of them ends in ";".
# Comments indented more than class members are inside function bodies and stay unchanged.

function is_indented(line) { return text[line] ~ /^   / }

# Makes a block of the indented lines from `first` on and returns the last of them.
function keep_block(first,    last, command) {
  command = "verbatim"
  for (last = first; last <= lines && is_indented(last); last++)
    if (text[last] ~ /;$/) command = "code{.cpp}"
  text[first - 1] = text[first - 1] " \\" command
  text[last - 1] = text[last - 1] " \\end" substr(command, 1, index(command "{", "{") - 1)
  return last - 1
}

function end_comment(    line) {
  for (line = 1; line <= lines; line++) {
    if (is_indented(line)) line = keep_block(line)
    else if (text[line] ~ /^ [0-9]+[.]/) sub(/[.]/, "\\.", text[line]) # "0. Then" is not a list
  }
  if (lines > 0 && !files++) text[lines] = text[lines] " \\file"
  if (lines > 0) text[lines] = text[lines] " */"
  for (line = 1; line <= lines; line++) print (line == 1 ? indent "/**" : "") text[line]
  lines = 0
}

match($0, /^ ? ?\/\//) && !/\/\/ NOLINT/ {
  lines++
  if (lines == 1) indent = substr($0, 1, RLENGTH - 2)
  text[lines] = substr($0, RLENGTH + 1)
  next
}
{ end_comment() }
/^ ? ?[^ #}].*[;,]  *\/\/ / { sub(/\/\//, "///<") }
{ print }
