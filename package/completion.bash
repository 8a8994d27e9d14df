# Completion for driverhost and mpd-player: what their own help names.
_mediaproxy() {
  local subcommand='' words=''
  if [[ " ${COMP_WORDS[*]:0:COMP_CWORD} " == *' -- '* ]]; then
    [[ $3 == -- ]] && mapfile -t COMPREPLY < <(compgen -c -- "$2")
    return
  fi
  [[ ${1##*/} == driverhost && $COMP_CWORD -gt 1 ]] && subcommand=${COMP_WORDS[1]}
  if [[ $2 == -* ]]; then
    words=$("$1" ${subcommand:+"$subcommand"} --help 2>/dev/null | sed -nE 's/^  (-h,)?(--[a-z-]+).*/\2/p')
  elif [[ -z $subcommand ]]; then
    words=$("$1" --help 2>/dev/null | sed -nE '/^Subcommands:/,/^$/s/^  ([a-z]+) .*/\1/p')
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$2")
}
complete -o default -F _mediaproxy driverhost mpd-player
