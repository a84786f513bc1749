# Completion of mendex for bash.                                                                      -*- shell-script -*-
#
# The verbs, their options and the words that options take are asked of the program itself, so that they are those that it has.

# _mendex_values HELP OPTION: the words among what an option takes; "--weld LENGTH|none" takes none.
_mendex_values() {
  local value
  value=$(sed -nE "s/^  (-[[:alnum:]],)?$2 ([^ :=]+).*/\2/p" <<<"$1")
  tr '|' '\n' <<<"$value" | grep -xE '[a-z]+'
}

_mendex() {
  local word=$2 before=$3 program=${1/#\~/$HOME} verb='' help k candidates=''
  COMPREPLY=()
  for ((k = 1; k < COMP_CWORD; k++)); do
    if [[ ${COMP_WORDS[k]} != -* ]]; then
      verb=${COMP_WORDS[k]}
      break
    fi
  done
  # shellcheck disable=SC2086  # no word at all before the verb
  help=$("$program" $verb --help 2>/dev/null) || return 0
  if [[ $before == --* ]]; then candidates=$(_mendex_values "$help" "$before"); fi
  if [[ -z $candidates && $word == -* ]]; then
    candidates=$(sed -nE 's/^  (-[[:alnum:]],)?(--[a-z-]+).*/\2/p' <<<"$help")
  elif [[ -z $candidates && -z $verb ]]; then
    candidates=$(sed -nE '/^Subcommands:/,/^$/s/^  ([a-z]+) .*/\1/p' <<<"$help")
  fi
  # shellcheck disable=SC2207  # none of the words has blanks
  COMPREPLY=($(compgen -W "$candidates" -- "$word"))
}

# Where nothing is found, names of files are meant.
complete -o bashdefault -o default -F _mendex mendex
