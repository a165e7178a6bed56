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
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -s i -l input-file -r -F -d 'take URLs from FILE, one a line, or from standard input when FILE is -'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l rest -r -F -d 'at the end, also after Ctrl-C, write the URLs that failed or were not fetched to FILE, for --input-file'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l unique -d 'take each URL once, wherever it stands'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l page -d 'all URLs are pages'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l file -d 'all URLs are files'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l accept -x -a '(__fish_complete_list , "string split \" \" \"pictures sound film archives documents pages\"")' -d 'of the links of pages, take only these'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l reject -x -a '(__fish_complete_list , "string split \" \" \"pictures sound film archives documents pages\"")' -d 'leave out these, also when --accept names them'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l match -x -d 'take only links in whose absolute URL this regular expression (of Perl\'s kind) is found'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l no-match -x -d 'leave out links in which it is found'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l same-host -d 'take only links to the host of their page'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -s n -l dry-run -d 'fetch no file, and print what would be fetched, with the name that the URL suggests'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l skip-existing -d 'skip a URL whose file is below the destination folder already, whatever its name is now'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l archive -r -F -d 'skip the URLs that FILE lists, and add each that is fetched, without password'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l cookies -r -F -d 'send the cookies in FILE, as browsers export them (Netscape\'s form)'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l header -x -d 'send the field "Name'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l referer -x -a 'page none' -d 'tell servers where a link stood'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l user-agent -x -d 'what the program calls itself when it asks for pages and files'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l retry -x -a '1 2 3 5 10' -d 'when all else is done, try again what may pass'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l wait -x -d 'wait so long after each page and file'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l limit-rate -x -d 'fetch at most so many bytes a second'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l no-comment -d 'do not note on files where they came from'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l remote-time -d 'give each file the time of its last change that the server tells (Last-Modified)'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l ahead -x -a '0 1 2 3 4 5 6 7 8' -d 'while a file is downloaded, already ask for the next N of the queue, 0 to 8'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l set -x -a '(__quillforth_cli_assignments)' -d 'use VALUE for a setting in this run only'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l no-cookies -d 'keep no cookies'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l local -d 'do not look whether there is an Internet connection'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -l json -d 'one JSON object an event on standard output, see below'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -s q -l quiet -d 'print only what failed'
complete -c quillforth-cli -n '__fish_seen_subcommand_from get' -s v -l verbose -d 'print requests and the heads of answers on standard error, without passwords, cookies and the values of --header'
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
