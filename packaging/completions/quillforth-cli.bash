# SPDX-License-Identifier: MIT
#
# Completion of quillforth-cli for bash.

_quillforth_cli() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
  local keys='showStatusWindow bringApplicationToFront setCommentToLocationURL overwriteFilesBySameName
    preserveFileCommentsWhenAggregatingFiles alwaysPromptForOutputLocation aggregateFiles
    showAlertsWhenErrorsOccur notifyWhenDone playSoundWhenDone sendReferer allowKeystrokesForBrowserURL downloadsAhead
    DestinationDirectory'
  local words='' kind=''
  case $previous in
    --to | DestinationDirectory) kind=folder ;;
    --base | --url) return ;;
    --ahead | downloadsAhead) words='0 1 2 3 4 5 6 7 8' ;;
    --set) if [[ $command == comment ]]; then return; else words=$keys; fi ;;
    *)
      case $COMP_CWORD:$command in
        1:*) words='get links classify comment extensions settings aggregate --help --version' ;;
        *:get) words='--to --page --file --ahead --set --json --no-cookies --local --help' ;;
        *:links) words='--base --url --null --with-filename --help' kind=file ;;
        *:comment) words='--set --help' kind=file ;;
        *:aggregate) words='--yes --dry-run --help' kind=folder ;;
        *:settings) words="--unset --help $keys" ;;
        *) words='--help' ;;
      esac
      if [[ $command == settings && $COMP_CWORD -eq 3 && $previous != --unset ]]; then words='yes no'; fi
      if [[ $command == settings && $COMP_CWORD -eq 3 && $previous == --unset ]]; then words=$keys; fi
      ;;
  esac
  if [[ $previous == --set ]]; then compopt -o nospace; fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  case $kind in
    folder)
      if [[ $current != -* ]]; then
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
      fi
      ;;
    file)
      if [[ $current != -* ]]; then
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
      fi
      ;;
  esac
}
complete -F _quillforth_cli quillforth-cli
