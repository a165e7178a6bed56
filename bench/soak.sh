#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Both programs against servers of faults, ended in the middle again and again, every URL accounted for:
#
#   bench/soak.sh [SECONDS] [SEED]
#
# First quillforth-cli with 5,000 requests (soak.py), then the window for SECONDS (1200; window_storm.sh). CLI and
# PROGRAM name builds. Ends with 1 when a URL was lost or a byte is wrong.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
seconds=${1:-1200} seed=${2:-$(date +%s)}

status=0
SEED=$seed python3 "$here/soak.py" || status=1
"$here/window_storm.sh" "$seconds" "$seed" || status=1
exit "$status"
