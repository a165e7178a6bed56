# SPDX-License-Identifier: MIT
#
# Completion of quillforth for bash. Made by packaging/OptionDocuments.cpp.

complete -f -W '--help --version --local --download-selection --service --wait' quillforth
