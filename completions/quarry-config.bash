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

# A word as the program will be given it. Nothing in it is run.
_quarry_config_plain() {
  local word=${1//[\\\"\']/}
  printf '%s' "${word/#\~\//$HOME/}"
}

# Offers those lines of standard input that begin as the word does, in any letter
# case, quoted for the shell.
_quarry_config_offer() {
  local word name
  word=$(_quarry_config_plain "$1")
  while IFS= read -r name; do
    [[ ${name,,} != "${word,,}"* ]] || COMPREPLY+=("$(printf '%q' "$name")")
  done
}

_quarry_config() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
  local given=() i
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    mapfile -t COMPREPLY < <(compgen -W 'agent check client diff dump edit get keygen list seal set unset --help --version' -- "$word")
    return
  fi
  # What stands before the word, without options and their values.
  for ((i = 2; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in
      --as | --default | --format | --from | -o) ((++i)) ;;
      -?*) ;;
      *) given+=("$(_quarry_config_plain "${COMP_WORDS[i]}")") ;;
    esac
  done
  case $before in
    --as)
      mapfile -t COMPREPLY < <(compgen -W 'agent client' -- "$word")
      return
      ;;
    --format)
      mapfile -t COMPREPLY < <(compgen -W 'text json sarif github' -- "$word")
      return
      ;;
    --default) return ;;
    --from | -o) given=() ;;
    *)
      if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_quarry_config_options "$command") --help" -- "$word")
        return
      fi
      ;;
  esac
  case $command,${#given[@]} in
    keygen,0 | seal,0)
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -d -- "$word")
      ;;
    check,* | diff,1 | *,0)
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
      ;;
    list,1 | get,1 | set,1 | unset,1)
      _quarry_config_offer "$word" < <(quarry-config list -- "${given[0]}" 2>/dev/null </dev/null)
      ;;
    get,2 | set,2 | unset,2)
      _quarry_config_offer "$word" < <(quarry-config list -- "${given[0]}" "${given[1]}" 2>/dev/null </dev/null)
      ;;
  esac
}
complete -F _quarry_config quarry-config
