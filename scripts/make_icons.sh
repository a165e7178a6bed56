#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Draws packaging/icons/SIDExSIDE.png, for desktops that want pixels, from the drawing beside them. Needs rsvg-convert.
set -euo pipefail
cd "$(dirname "$0")/../packaging/icons"
for side in 16 22 24 32 48 64 128 256 512; do
  rsvg-convert --width "$side" --height "$side" --output "${side}x$side.png" com.tessarysoftware.Quillforth.svg
done
