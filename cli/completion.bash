# Completion of fileshare for bash. What can be typed is asked of fileshare itself: its --help for
# verbs, options and fixed words, its lists for the names of users, groups and shares, which need
# root.

# The metavar of an argument: _fileshare_metavar HELP NUMBER, such as GROUP. A last one with "..."
# stands for all that follow.
_fileshare_metavar() {
  local -a usage
  read -r -a usage <<< "$(sed -n 's/^Usage: .*\[OPTIONS\] *//p' <<< "$1")"
  local last=$((${#usage[@]} - 1)) number=$2
  if ((last >= 0 && number > last)) && [[ ${usage[last]} == *...* ]]; then number=$last; fi
  tr -d '[].' <<< "${usage[number]}"
}

# The fixed words that an argument or option can be: _fileshare_words HELP NAME
_fileshare_words() {
  sed -n "s/^  $2 TEXT:{\([^}]*\)}.*/\1/p" <<< "$1" | tr , '\n'
}

# _fileshare_names LIST..., such as album user. A name that JSON has to escape is left out.
_fileshare_names() {
  "$program" "$@" list --json 2> /dev/null | sed -n 's/^    "name": "\([^"\\]*\)",\?$/\1/p'
}

# What an argument or option of this name can be: _fileshare_values HELP NAME VERB...
_fileshare_values() {
  local help=$1 name=$2
  shift 2
  case $name in
    NAME) [[ ${*: -1} == add ]] || _fileshare_names "${@:1:$#-1}" ;;
    USER) if [[ $1 == album ]]; then _fileshare_names album user; else _fileshare_names user; fi ;;
    GROUP | --group) _fileshare_names group ;;
    SHARE | --time-machine) _fileshare_names share ;;
    *) _fileshare_words "$help" "$name" ;;
  esac
}

_fileshare() {
  local program=$1 current=$2 previous=$3
  local help verbs word option= number=0 values quoted
  local -a path=()
  help=$("$program" --help 2> /dev/null)
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    verbs=$(sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\) .*/\1/p' <<< "$help")
    if [[ -n $option ]]; then
      option=  # this is its value
    elif [[ $word == -* ]]; then
      if grep -qe "^  $word [A-Z]" <<< "$help"; then option=$word; fi
    elif grep -qxFe "$word" <<< "$verbs"; then
      path+=("$word")
      help=$("$program" "${path[@]}" --help 2> /dev/null)
    else
      number=$((number + 1))
    fi
  done

  verbs=$(sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\) .*/\1/p' <<< "$help")
  if [[ -n $option ]]; then
    values=$(_fileshare_values "$help" "$option" "${path[@]}")
  elif [[ $current == -* ]]; then
    values=$(sed -n 's/^  \(-h,\)\?\(--[a-z0-9-]*\).*/\2/p' <<< "$help")
  elif [[ -n $verbs ]]; then
    values=
    if ((number == 0)); then values=$verbs; fi
  else
    values=$(_fileshare_values "$help" "$(_fileshare_metavar "$help" $number)" "${path[@]}")
  fi

  # Not with compgen, which would run what a name holds. Within quotes, only names that need no
  # others.
  COMPREPLY=()
  local quote=
  case ${COMP_WORDS[COMP_CWORD]} in [\"\']*) quote=open current=${current#[\"\']} ;; esac
  while IFS= read -r word; do
    printf -v quoted %q "$word"
    if [[ -n $quote ]]; then
      if [[ $word == *[\"\'\$\`\\!]* ]]; then continue; fi
      quoted=$word
    fi
    if [[ -n $word && ($word == "$current"* || $quoted == "$current"*) ]]; then
      COMPREPLY+=("$quoted")
    fi
  done <<< "$values"
}
complete -F _fileshare fileshare
