#compdef driverhost mpd-player
# What the programs' own help names.
local -a rows
local subcommand mark=${words[(ie)--]}
if (( mark < CURRENT )); then
  shift $mark words
  (( CURRENT -= mark ))
  _normal
  return
fi
[[ $service == driverhost && $CURRENT -gt 2 ]] && subcommand=$words[2]
if [[ $PREFIX == -* ]]; then
  rows=(${(f)"$($words[1] $subcommand --help 2>/dev/null | sed -nE 's/^  (-h,)?(--[a-z-]+)( [^ ]+)? +(.*)/\2:\4/p')"})
  _describe option rows
elif [[ $service == driverhost && -z $subcommand ]]; then
  rows=(${(f)"$($words[1] --help 2>/dev/null | sed -nE '/^Subcommands:/,/^$/s/^  ([a-z]+) +(.*)/\1:\2/p')"})
  _describe command rows
else
  _files
fi
