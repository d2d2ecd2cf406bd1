# Turns the plain comments of a header into those that Doxygen reads, line by line,
# so that its warnings name the right lines. The first comment tells of the file, a
# whole-line comment of what follows, one behind code of that code. Lines that are
# set in are kept as they stand, as C++ where one of them ends in ";". Further in than
# members stand are the bodies of functions; their comments are left alone.

function is_set_in(line) { return text[line] ~ /^   / }

# Shows the lines from `first` on that are set in, and returns the last one.
function keep(first,    last, command) {
  command = "verbatim"
  for (last = first; last <= lines && is_set_in(last); last++)
    if (text[last] ~ /;$/) command = "code{.cpp}"
  text[first - 1] = text[first - 1] " \\" command
  text[last - 1] = text[last - 1] " \\end" substr(command, 1, index(command "{", "{") - 1)
  return last - 1
}

function end_comment(    line) {
  for (line = 1; line <= lines; line++) {
    if (is_set_in(line)) line = keep(line)
    else if (text[line] ~ /^ [0-9]+[.]/) sub(/[.]/, "\\.", text[line]) # "0. Then" begins no list
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
