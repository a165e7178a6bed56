# SPDX-License-Identifier: MIT
#
# Completion of quillforth for fish. Made by packaging/OptionDocuments.cpp.

complete -c quillforth -s h -l help -d 'Print this help message and exit'
complete -c quillforth -l version -d 'Display program version information and exit'
complete -c quillforth -l local -d 'Take the network as up without asking, for servers on this machine'
complete -c quillforth -l download-selection -d 'Download the URL that is selected on the screen, or else in the clipboard'
complete -c quillforth -l service -d 'Show no window before another program asks for something over D-Bus'
complete -c quillforth -l wait -d 'Where a Quillforth runs already, end when that one does, and not at once'
