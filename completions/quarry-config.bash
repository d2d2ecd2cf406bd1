# Completion of quarry-config for bash: commands, options, files, and then the
# sections and options of the file that was named before.

_quarry_config_options() {
  case $1 in
    check) echo --as --format --json --strict ;;
    list) echo --json --origin ;;
    get) echo --default ;;
    set) echo --create --dry-run --from ;;
    unset) echo --dry-run --with-comment ;;
    edit) echo --as ;;
    dump) echo --json -o ;;
    diff | client | agent) echo --json ;;
  esac
}

# Sets `words`, up to the one to complete. Bash parts words at "=" and ":"; what has no
# blank between is one word again. Sets `kept` to the length of what bash leaves as it is
# of the last one.
_quarry_config_words() {
  local rest=$COMP_LINE piece behind_mark='' trimmed i
  words=()
  for ((i = 0; i <= COMP_CWORD; ++i)); do
    piece=${COMP_WORDS[i]}
    trimmed=${rest#"${rest%%[![:space:]]*}"}
    if [[ ${#words[@]} -gt 0 && $rest == "$trimmed" && ($behind_mark || $piece == [=:]*) ]]; then
      words[${#words[@]} - 1]+=$piece
    else
      words+=("$piece")
    fi
    behind_mark=${piece%%[!=:]*}
    rest=${trimmed#"$piece"}
  done
  [[ $piece != [=:]* ]] || piece=
  kept=$((${#words[${#words[@]} - 1]} - ${#piece}))
}

# A word as the program will be given it. Nothing in it is run.
_quarry_config_plain() {
  local word=${1//[\\\"\']/}
  printf '%s' "${word/#\~\//$HOME/}"
}

# A name as it must stand in a word that begins as $2 does.
_quarry_config_quoted() { # NAME WORD
  local name=$1
  case $2 in
    \"*)
      name=${name//\\/\\\\} name=${name//\"/\\\"} name=${name//\$/\\\$}
      printf '%s' "\"${name//\`/\\\`}"
      ;;
    \'*) printf '%s' "'${name//\'/\'\\\'\'}" ;;
    *) printf '%q' "$name" ;;
  esac
}

# Offers those lines of standard input that begin as the word does, in any letter
# case, quoted for the shell.
_quarry_config_offer() { # WORD
  local plain name quoted
  plain=$(_quarry_config_plain "$1")
  while IFS= read -r name; do
    [[ ${name,,} == "${plain,,}"* ]] || continue
    quoted=$(_quarry_config_quoted "$name" "$1")
    COMPREPLY+=("${quoted:kept}")
  done
}

_quarry_config() {
  local words kept given=() before='' command word i
  _quarry_config_words
  word=${words[${#words[@]} - 1]} command=${words[1]}
  COMPREPLY=()
  if [ ${#words[@]} -eq 2 ]; then
    mapfile -t COMPREPLY < <(compgen -W 'agent check client diff dump edit get keygen list seal set unset --help --version' -- "$word")
    return
  fi
  # What stands before the word, without options and their values.
  for ((i = 2; i < ${#words[@]} - 1; ++i)); do
    before=${words[i]}
    case $before in
      --as | --default | --format | --from | -o) ((++i)) ;;
      -?*) ;;
      *) given+=("$(_quarry_config_plain "$before")") ;;
    esac
  done
  # An option that still waits for its value, behind a blank or a "=".
  ((i == ${#words[@]})) || before=
  if [[ $word == --*=* ]]; then before=${word%%=*} word=${word#*=}; fi
  case $before in
    --as) mapfile -t COMPREPLY < <(compgen -W 'agent client' -- "$word") ;;
    --format) mapfile -t COMPREPLY < <(compgen -W 'text json sarif github' -- "$word") ;;
    --default) ;;
    --from | -o) _quarry_config_files -f "$word" ;;
    *)
      if [[ $word == -* && " ${words[*]:2:${#words[@]}-3} " != *' -- '* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_quarry_config_options "$command") --help" -- "$word")
      else
        _quarry_config_argument
      fi
      ;;
  esac
}

_quarry_config_files() { # KIND WORD
  compopt -o filenames
  mapfile -t COMPREPLY < <(compgen "$1" -- "$2")
}

# The word that comes behind those in `given`.
_quarry_config_argument() {
  case $command,${#given[@]} in
    keygen,0 | seal,0) _quarry_config_files -d "$word" ;;
    check,* | diff,1 | *,0) _quarry_config_files -f "$word" ;;
    list,1 | get,1 | set,1 | unset,1)
      _quarry_config_offer "$word" < <(quarry-config list -- "${given[0]}" 2>/dev/null </dev/null)
      ;;
    get,2 | set,2 | unset,2)
      _quarry_config_offer "$word" < <(quarry-config list -- "${given[0]}" "${given[1]}" 2>/dev/null </dev/null)
      ;;
  esac
}
complete -F _quarry_config quarry-config
