#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Says which lines and branches of the product the tests run.
#
#   scripts/coverage.sh [OPTION-OF-CTEST...]      for example -R 'GetTest|Desktop'; without one, every test
#
# Prints a line a room and the sum, and writes build/coverage/lines.txt: each file with the lines that never ran.
set -euo pipefail

cd "$(dirname "$0")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
install_missing "${build_packages[@]}" "${test_packages[@]}" gcovr
cmake --preset coverage >/dev/null
cmake --build --preset coverage
find build/coverage -name '*.gcda' -delete
ctest --preset coverage -j "$(nproc)" "$@" >build/coverage/tests.log || tail -n 20 build/coverage/tests.log >&2

report=(gcovr --root . --object-directory build/coverage --exclude 'build/' --exclude 'tests/' --exclude 'examples/'
  --exclude-unreachable-branches --exclude-throw-branches)
"${report[@]}" --txt build/coverage/lines.txt --csv build/coverage/lines.csv
python3 - build/coverage/lines.csv <<'PYTHON'
import collections, csv, os, sys

rooms = collections.defaultdict(lambda: [0, 0, 0, 0])
for row in csv.DictReader(open(sys.argv[1])):
    numbers = [int(row[key]) for key in ("line_total", "line_covered", "branch_total", "branch_covered")]
    for room in (os.path.dirname(row["filename"]), "all"):
        rooms[room] = [a + b for a, b in zip(rooms[room], numbers)]
print(f"{'room':20} {'lines':>7} {'run':>8} {'branches':>9} {'run':>8}")
for room, (lines, run, branches, taken) in rooms.items():
    print(f"{room:20} {lines:7} {run / max(lines, 1):8.1%} {branches:9} {taken / max(branches, 1):8.1%}")
PYTHON
