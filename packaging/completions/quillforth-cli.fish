# SPDX-License-Identifier: MIT
#
# Completion of quillforth-cli for fish. Made by packaging/OptionDocuments.cpp.

function __quillforth_cli_assignments
    for key in showStatusWindow bringApplicationToFront setCommentToLocationURL overwriteFilesBySameName preserveFileCommentsWhenAggregatingFiles alwaysPromptForOutputLocation aggregateFiles showAlertsWhenErrorsOccur notifyWhenDone playSoundWhenDone sendReferer allowKeystrokesForBrowserURL
        printf '%s=yes\n%s=no\n' $key $key
    end
    printf 'downloadsAhead=%s\n' (seq 0 8)
    printf 'DestinationDirectory=%s\n' (__fish_complete_directories (string replace -r '.*=' '' -- (commandline -ct)) | string replace -r '\t.*' '')
end

complete -c quillforth-cli -f
complete -c quillforth-cli -n __fish_use_subcommand -a get -d 'download files, and what pages link to'
complete -c quillforth-cli -n __fish_use_subcommand -a links -d 'list the links of pages, without downloading them'
complete -c quillforth-cli -n __fish_use_subcommand -a classify -d 'tell pages from files, and why'
complete -c quillforth-cli -n __fish_use_subcommand -a comment -d 'show or change the comments of files'
complete -c quillforth-cli -n __fish_use_subcommand -a extensions -d 'list the table of file-name extensions and types'
complete -c quillforth-cli -n __fish_use_subcommand -a settings -d 'show or change the settings'
complete -c quillforth-cli -n __fish_use_subcommand -a aggregate -d 'sort a folder's files into subfolders by extension'
complete -c quillforth-cli -n __fish_use_subcommand -a help -d 'explain a command'
complete -c quillforth-cli -n __fish_use_subcommand -s h -l help -d 'show this text'
complete -c quillforth-cli -n __fish_use_subcommand -s V -l version -d 'show the version'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -s d -s P -l to -x -a '(__fish_complete_directories)' -d 'download into DIR, which is made when it does not exist'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l page -d 'all URLs are pages'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l file -d 'all URLs are files'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l ahead -x -a '0 1 2 3 4 5 6 7 8' -d 'while a file is downloaded, already ask for the next N of the queue, 0 to 8'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l set -x -a '(__quillforth_cli_assignments)' -d 'use VALUE for a setting in this run only'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l no-cookies -d 'keep no cookies'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l local -d 'do not look whether there is an Internet connection'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l json -d 'one JSON object an event on standard output, see below'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -s h -l help -d 'show this text'
complete -c quillforth-cli -n '__fish_seen_subcommand_from links' -l base -x -d 'resolve all links against URL, whatever the page says'
complete -c quillforth-cli -n '__fish_seen_subcommand_from links' -l url -x -d 'the page\'s own URL'
complete -c quillforth-cli -n '__fish_seen_subcommand_from links' -l null -d 'for every link the text as it stands in the page, a NUL byte, the absolute URL, a NUL byte'
complete -c quillforth-cli -n '__fish_seen_subcommand_from links' -l with-filename -d 'with --null'
complete -c quillforth-cli -n '__fish_seen_subcommand_from links' -s h -l help -d 'show this text'
complete -c quillforth-cli -n '__fish_seen_subcommand_from links' -F
complete -c quillforth-cli -n '__fish_seen_subcommand_from classify' -s h -l help -d 'show this text'
complete -c quillforth-cli -n '__fish_seen_subcommand_from comment' -l set -x -d 'make TEXT the comment of each FILE'
complete -c quillforth-cli -n '__fish_seen_subcommand_from comment' -s h -l help -d 'show this text'
complete -c quillforth-cli -n '__fish_seen_subcommand_from comment' -F
complete -c quillforth-cli -n '__fish_seen_subcommand_from extensions' -s h -l help -d 'show this text'
complete -c quillforth-cli -n '__fish_seen_subcommand_from settings' -l unset -d 'go back to the default'
complete -c quillforth-cli -n '__fish_seen_subcommand_from settings' -s h -l help -d 'show this text'
complete -c quillforth-cli -n '__fish_seen_subcommand_from settings' -a 'showStatusWindow bringApplicationToFront setCommentToLocationURL overwriteFilesBySameName preserveFileCommentsWhenAggregatingFiles alwaysPromptForOutputLocation aggregateFiles showAlertsWhenErrorsOccur notifyWhenDone playSoundWhenDone sendReferer allowKeystrokesForBrowserURL downloadsAhead DestinationDirectory'
complete -c quillforth-cli -n '__fish_seen_subcommand_from settings' -a 'yes no'
complete -c quillforth-cli -n '__fish_seen_subcommand_from aggregate' -l yes -d 'do not ask'
complete -c quillforth-cli -n '__fish_seen_subcommand_from aggregate' -s n -l dry-run -d 'only print what would be moved where, a line each'
complete -c quillforth-cli -n '__fish_seen_subcommand_from aggregate' -s h -l help -d 'show this text'
complete -c quillforth-cli -n '__fish_seen_subcommand_from aggregate' -a '(__fish_complete_directories)'
