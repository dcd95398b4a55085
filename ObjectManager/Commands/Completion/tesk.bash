# Completion of the program tesk in bash: commands, options, files, namespaces and classes. Needs
# nothing but bash 4.3; `source` it, or install it where the package bash-completion looks for it.

# Sets `words` to the words of the command line up to the cursor, `word` to the word at the cursor, and
# `skipped` to the beginning of that word that bash does not replace. Bash cuts words at "=" and ":",
# which are put together again here: those without a space between them.
_tesk_words() {
  local rest=${COMP_LINE:0:COMP_POINT} spaces piece index
  words=()
  for ((index = 0; index <= COMP_CWORD; ++index)); do
    spaces=${rest%%[![:blank:]]*}
    rest=${rest#"$spaces"}
    piece=${COMP_WORDS[index]}
    ((index < COMP_CWORD)) || piece=$rest
    rest=${rest#"$piece"}
    if [[ -z $spaces && $index -gt 0 ]]; then
      words[-1]+=$piece
    else
      words+=("$piece")
    fi
  done
  word=${words[-1]}
  local breaks=
  for piece in = :; do
    [[ $COMP_WORDBREAKS != *"$piece"* ]] || breaks+=$piece
  done
  skipped=
  [[ -z $breaks || $word != *["$breaks"]* ]] || skipped=${word%"${word##*["$breaks"]}"}
}

# A word without its quotes, and with the home directory in place of "~".
_tesk_unquoted() {
  local text=${1//[\\\"\']/}
  [[ $text != \~/* ]] || text=$HOME${text#\~}
  printf '%s' "$text"
}

# The options of a command.
_tesk_options() {
  local server="--server --server-user --server-password-file --server-cacert --server-certificate"
  server+=" --server-key --server-insecure --server-timeout --server-class"
  case $1 in
    serve) echo --help --namespace --include-path --config $server --refresh --cache --listen --tls-listen --tls-certificate --tls-key --tls-client-ca --admin-listen --published-address --password-file --log-level --access-log ;;
    export) echo --help --output --host --published-address --namespace --include-path --config $server --jobs --prune ;;
    import) echo --help --output ${server% *} --namespace --prune ;;
    check) echo --help --namespace --include-path --config $server --format --jobs ;;
    diff) echo --help --namespace --include-path --config $server --accepted --host --published-address --format --jobs ;;
    classes) echo --help --namespace --include-path --config $server --format ;;
    passwd) echo --help --delete ;;
  esac
}

# Offers the lines of standard input, which are whole words, without the part that bash keeps.
_tesk_offer() {
  local line
  while IFS= read -r line; do
    COMPREPLY+=("${line#"$skipped"}")
  done
}

# Offers the words in $1 that begin with the word at the cursor.
_tesk_offer_words() {
  _tesk_offer < <(compgen -W "$1" -- "$word")
}

# Offers the files, or with -d the directories; their path follows the prefix $2 of the word.
_tesk_offer_files() {
  local path
  compopt -o filenames 2> /dev/null
  path=$(_tesk_unquoted "${word#"$2"}")
  _tesk_offer < <(compgen "$1" -- "$path" | while IFS= read -r path; do echo "$2$path"; done)
}

# Offers values of the option $1; they follow the prefix $2 of the word.
_tesk_offer_values() {
  case $1 in
    --config | --password-file | --access-log | --server-password-file | --server-cacert | \
      --server-certificate | --server-key | --accepted | --tls-certificate | --tls-key | \
      --tls-client-ca)
      _tesk_offer_files -f "$2"
      ;;
    --output | --cache) _tesk_offer_files -d "$2" ;;
    --namespace)
      local value=${word#"$2"}
      [[ $value != *=* ]] || _tesk_offer_files -f "$2${value%%=*}="
      ;;
    --format) _tesk_offer < <(compgen -P "$2" -W "text json" -- "${word#"$2"}") ;;
    --log-level) _tesk_offer < <(compgen -P "$2" -W "1 2 3 4" -- "${word#"$2"}") ;;
  esac
}

# Lists with `tesk classes` the classes that the options of the command line name. It does not run the
# program if the line has substitutions, which the shell would have to run first, or if it names a
# server, which takes seconds to tell its classes.
_tesk_listing() {
  local text
  for text in "${words[@]}"; do
    [[ $text != --server && $text != --server=* ]] || return
  done
  for text in "${words[0]}" "${model[@]}"; do
    [[ $text != *[\`\$]* ]] || return
  done
  local -a arguments=()
  for text in "${model[@]}" "$@"; do
    arguments+=("$(_tesk_unquoted "$text")")
  done
  "$(_tesk_unquoted "${words[0]}")" classes "${arguments[@]}" < /dev/null 2> /dev/null
}

# Offers what stands at the place of an argument: `arguments` are those before it.
_tesk_offer_arguments() {
  local namespaces='s/^\([^ ]*\)  (.*/\1/p' classes='s/^  \([^ ]*\).*/\1/p'
  case $command/${#arguments[@]} in
    export/*) _tesk_offer_words "$(_tesk_listing | sed -n "$classes")" ;;
    classes/0) _tesk_offer_words "$(_tesk_listing | sed -n "$namespaces")" ;;
    classes/1) _tesk_offer_words "$(_tesk_listing "${arguments[0]}" | sed -n "$classes")" ;;
    diff/[01] | passwd/0) _tesk_offer_files -f "" ;;
  esac
}

# Sorts the words between command and cursor into `arguments` and `model`, the options that say where
# classes come from; `option` is the one whose value is at the cursor.
_tesk_sort_words() {
  local text
  for text in "${words[@]:2:${#words[@]}-3}"; do
    if [[ -n $option ]]; then
      case $option in --namespace | --config) model+=("$option" "$text") ;; esac
      option=
      continue
    fi
    case $text in
      --namespace=* | --config=*) model+=("$text") ;;
      --help | --delete | --prune | --server-insecure | -h | --*=*) ;;
      --*) option=$text ;;
      *) arguments+=("$text") ;;
    esac
  done
}

_tesk() {
  local word skipped command option=
  local -a words=() arguments=() model=()
  COMPREPLY=()
  _tesk_words
  if ((${#words[@]} <= 2)); then
    case $word in
      -*) _tesk_offer_words "--help --version" ;;
      *) _tesk_offer_words "serve export import check diff classes passwd" ;;
    esac
    return
  fi
  command=${words[1]}
  _tesk_sort_words
  if [[ -n $option ]]; then
    _tesk_offer_values "$option" ""
  elif [[ $word == --*=* ]]; then
    _tesk_offer_values "${word%%=*}" "${word%%=*}="
  elif [[ $word == -* ]]; then
    _tesk_offer_words "$(_tesk_options "$command")"
  else
    _tesk_offer_arguments
  fi
}

complete -F _tesk tesk
