# SPDX-License-Identifier: MIT
#
# Completion of quillforth-cli for bash. Made by packaging/OptionDocuments.cpp.

_quillforth_cli() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
  local keys='showStatusWindow bringApplicationToFront setCommentToLocationURL overwriteFilesBySameName preserveFileCommentsWhenAggregatingFiles alwaysPromptForOutputLocation aggregateFiles showAlertsWhenErrorsOccur notifyWhenDone playSoundWhenDone sendReferer chooseLinks allowKeystrokesForBrowserURL downloadsAhead DestinationDirectory'
  local words='' kind='' key='' prefix='' suffix=''
  # bash makes three words of a word with a "=".
  if [[ $current == '=' ]]; then
    key=$previous current=''
  elif [[ $previous == '=' ]]; then
    key=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  if [[ $key == -* ]]; then previous=$key key=''; fi
  if [[ $COMP_CWORD -eq 1 ]]; then
    words=' get links classify comment extensions settings aggregate help --help --version'
  elif [[ -z $key ]]; then
    case $command:$previous in
      get:-d | get:-P | get:--to) kind=directory ;;
      get:-i | get:--input-file) kind=file ;;
      get:--rest) kind=file ;;
      get:--accept) words='pictures sound film archives documents pages' prefix=, ;;
      get:--reject) words='pictures sound film archives documents pages' prefix=, ;;
      get:--match) return ;;
      get:--no-match) return ;;
      get:--archive) kind=file ;;
      get:--cookies) kind=file ;;
      get:--header) return ;;
      get:--referer) words='page none' ;;
      get:--user-agent) return ;;
      get:--retry) words='1 2 3 5 10' ;;
      get:--wait) return ;;
      get:--limit-rate) return ;;
      get:--ahead) words='0 1 2 3 4 5 6 7 8' ;;
      get:--set) words=$keys suffix='=' ;;
      links:--base) return ;;
      links:--url) return ;;
      links:--accept) words='pictures sound film archives documents pages' prefix=, ;;
      links:--reject) words='pictures sound film archives documents pages' prefix=, ;;
      links:--match) return ;;
      links:--no-match) return ;;
      classify:-i | classify:--input-file) kind=file ;;
      comment:--set) return ;;
      comment:--find) return ;;
      settings:--unset | settings:--json) words=$keys ;;
      settings:-*) ;;
      settings:*) if [[ $COMP_CWORD -eq 3 ]]; then key=$previous; else words="$keys --unset --json --help"; fi ;;
      get:*) words='--to --input-file --rest --unique --page --file --accept --reject --match --no-match --same-host --dry-run --skip-existing --archive --cookies --header --referer --user-agent --retry --wait --limit-rate --no-comment --remote-time --ahead --set --no-cookies --local --json --quiet --verbose --help' ;;
      links:*) words='--base --url --null --with-filename --accept --reject --match --no-match --same-host --json --help' kind=file ;;
      classify:*) words='--input-file --json --help' ;;
      comment:*) words='--set --find --help' kind=file ;;
      extensions:*) words='--help' ;;
      aggregate:*) words='--yes --dry-run --help' kind=directory ;;
      help:*) words='get links classify comment extensions settings aggregate ' ;;
    esac
  fi
  case $key in
    '') ;;
    DestinationDirectory) kind=directory ;;
    downloadsAhead) words='0 1 2 3 4 5 6 7 8' ;;
    *) words='yes no' ;;
  esac
  if [[ -n $suffix ]]; then compopt -o nospace; fi
  if [[ $prefix == ',' && $current == *,* ]]; then prefix=${current%,*},; else prefix=''; fi
  mapfile -t COMPREPLY < <(compgen -P "$prefix" -S "$suffix" -W "$words" -- "${current#"$prefix"}")
  if [[ -n $kind && $current != -* ]]; then
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -A "$kind" -- "$current")
  fi
}
complete -F _quillforth_cli quillforth-cli
