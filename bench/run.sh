#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Measures Quillforth against its peers, by turns and in one run, holds every byte of every program against the
# original, and writes the table of docs/performance.md:
#
#   bench/run.sh [--quick]
#
# Installs and builds what is missing first. Then it takes about ten minutes; --quick takes three, and only prints.
# DISK (/var/tmp) and MEMORY (/dev/shm) name folders for the files, ROUNDS (7, at least 3) says how often, CLI names
# another program in the place of ours.
# shellcheck disable=SC2016 # what stands in single quotes is for another shell
set -euo pipefail

quick=
case "${1-}" in
  "") ;;
  --quick) quick=yes ;;
  *) sed -n '3,12s/^# \{0,1\}//p' "$0"; exit 2 ;;
esac
root=$(cd "$(dirname "$0")/.." && pwd)
# shellcheck source=scripts/packages.sh
. "$root/scripts/packages.sh"
install_missing "${build_packages[@]}" "${bench_packages[@]}"
cd "$root"
cmake --preset bench > /dev/null
cmake --build --preset bench --target quillforth-cli links_benchmark aggregate_benchmark desktop_benchmark > /dev/null
cli=${CLI:-$root/build/bench/bin/quillforth-cli}
programs=$root/build/bench/bin
# shellcheck source=bench/peers.sh
. "$root/bench/peers.sh"

several=${ROUNDS:-${quick:+3}} several=${several:-7} # of a case that is short
many=${quick:+500} many=${many:-2000}     # files
large=${quick:+128} large=${large:-1024}  # MiB
no_comments=(--set setCommentToLocationURL=false)
wanted= # below www: what is to have come

ours() { measure ours "$cli" get --local --page --to "$out" "$base/$wanted/index.html"; }
without_comments() { measure ours-bare "$cli" get --local --page --to "$out" "${no_comments[@]}" "$base/$wanted/index.html"; }
without_waiting() { measure ours-hasty env LD_PRELOAD="$work/hasty.so" "$cli" get --local --page --to "$out" "$base/$wanted/index.html"; }
ahead() { measure ours-ahead "$cli" get --local --page --ahead 8 --to "$out" "$base/$wanted/index.html"; }
curl_list() { measure curl curl --silent --config "$work/curl"; }
wget_list() { measure wget wget --quiet --input-file="$work/list" --directory-prefix="$out"; }
wget2_list() { measure wget2 wget2 --quiet --max-threads=1 --input-file="$work/list" --directory-prefix="$out"; }
aria2_list() { measure aria2 aria2c --quiet --file-allocation=none --max-concurrent-downloads=1 --split=1 --input-file="$work/list" --dir="$out"; }

{
  echo '| case | Quillforth | peer | peer | ratio | processor | memory |'
  echo '|---|---|---|---|---|---|---|'
} | tee "$work/table"
start_nginx

# What waits for a disk does not wait in this library.
echo 'int sync_file_range() { return 0; } int syncfs() { return 0; }' |
  gcc -xc -shared -fPIC -o "$work/hasty.so" -

wanted=large
mkdir "$work/www/large"
head -c "$((large * 1048576))" /dev/urandom > "$work/www/large/large.bin"
ours_large() { measure ours "$cli" get --local --file --to "$out" "$base/large/large.bin"; }
curl_large() { measure curl curl --silent --output "$out/large.bin" "$base/large/large.bin"; }
hasty_large() { measure ours-hasty env LD_PRELOAD="$work/hasty.so" "$cli" get --local --file --to "$out" "$base/large/large.bin"; }
in_turn 3 ours_large hasty_large curl_large
row "one file of $large MiB to the disk" ours curl
row "the same without waiting for the disk" ours-hasty curl

make_files small "$many" 10
wanted=small
for place in "to the disk" "into memory"; do
  if [[ $place == "to the disk" ]]; then out=$work/out; else out=$memory/out; fi
  list_files small "$base"
  in_turn "$several" ours without_comments without_waiting curl_list wget_list wget2_list aria2_list
  for peer in curl wget wget2 aria2; do row "$many files of 10 KiB $place" ours "$peer"; done
  row "the same without comments" ours-bare curl
  row "the same without waiting for the disk" ours-hasty curl
done
rm -r "$memory/out"
out=$work/out

make_files middle "$((many / 10))" 1024
wanted=middle
list_files middle "$base"
in_turn "$several" ours without_waiting curl_list
row "$((many / 10)) files of 1 MiB to the disk" ours curl
row "the same without waiting for the disk" ours-hasty curl

make_files late 100 10
exec 3< <(exec bench/slow_server.py "$work/www")
processes+=($!)
read -r -t 10 late <&3
wanted=late
list_files late "$late"
nginx_base=$base base=$late
contenders=(ours curl_list)
! "$cli" get --help | grep -q -e '--ahead' || contenders+=(ahead)
in_turn "$((several + 4))" "${contenders[@]}"
row "100 files, each 20 ms late" ours curl
[[ ! -e $work/ours-ahead.times ]] || row "the same with 8 asked for ahead" ours-ahead curl
base=$nginx_base

wanted=
start_ours() { measure ours bash -c 'for i in {1..20}; do "$0" --version; done' "$cli"; }
start_curl() { measure curl bash -c 'for i in {1..20}; do "$0" --version; done' curl; }
in_turn "$several" start_ours start_curl
row "--version, 20 times" ours curl

# A page of 32 MiB that is nothing but links, under a base that makes each of them long.
python3 - "$base" > "$work/www/hostile.html" << 'PYTHON'
import itertools, string, sys
print(f'<head><base href="{sys.argv[1]}/many/{"long/" * 42}"></head>')
names = itertools.product(string.ascii_letters + string.digits, repeat=4)
print("".join(f"src={''.join(name)} " for name in itertools.islice(names, ((32 << 20) - 999) // 9)))
PYTHON
echo > "$work/www/many/small.txt"
hostile_links() { measure ours "$cli" links --url "$base/hostile.html" "$work/www/hostile.html"; }
hostile_read() { measure grep grep -c -o 'src=[^ ]*' "$work/www/hostile.html"; }
in_turn 1 hostile_links hostile_read
row "links of a hostile page of 32 MiB" ours grep
hostile_get() { measure ours bash -c '"$0" get --local --page --to "$1" "$2" | head -n 1' "$cli" "$out" "$base/hostile.html"; }
in_turn 1 hostile_get hostile_read
row "get of that page, up to its first file" ours grep

# note_times NAME WALL [CPU]: seconds of a run that was measured from inside.
note_times() { echo "$2 ${3:-0} 0" > "$work/$1.times"; }
find /usr/share/doc/bash /usr/share/doc/python3.11/html -name '*.html' -exec \
  "$programs/links_benchmark" "$several" {} + > "$work/links"
while read -r name seconds _; do note_times "$name" "$seconds"; done < "$work/links"
for peer in libxml2 gumbo; do row "links of $(awk '{ printf "%.0f", $4 / 1048576; exit }' "$work/links") MiB of manuals" ours "$peer"; done

"$programs/aggregate_benchmark" --rounds "$((several / 3))" "$work" "$memory" > "$work/sorting"
while read -r place bare bare_cpu own own_cpu _; do
  note_times renames "$bare" "$bare_cpu"
  note_times ours "$own" "$own_cpu"
  if [[ $place == "$work" ]]; then row "sorting 100,000 files on the disk" ours renames; else row "sorting 100,000 files in memory" ours renames; fi
done < "$work/sorting"

exec 4< <(exec Xvfb -displayfd 1 -screen 0 1280x1024x24 2> /dev/null)
processes+=($!)
read -r -t 10 number <&4
export DISPLAY=:$number XDG_RUNTIME_DIR=$work/home
chmod 700 "$work/home"
window() { measure ours "$programs/desktop_benchmark" startup; }
bare_window() { measure bare-window "$programs/desktop_benchmark" bare; }
in_turn "$several" window bare_window
row "the window, until it is painted" ours bare-window
"$programs/desktop_benchmark" queue 100000 > "$work/window"
"$programs/desktop_benchmark" download "$base/large/large.bin" >> "$work/window"
cmp "$work/www/large/large.bin" "$XDG_DATA_HOME/Tessary Software/Quillforth/large.bin"
value() { awk -v name="$1" '$1 == name { print $2 }' "$work/window"; }
{
  echo
  echo "In the window: 100,000 URLs are queued in $(value queued-ms) ms and shown after $(value shown-ms) ms; while a file of"
  echo "$large MiB comes in $(value download-ms) ms, the event loop stands still for $(value gap-ms) ms at most."
} | tee -a "$work/table"

[[ -z $quick ]] || exit 0
sed -i '/^## The last run$/,$d' docs/performance.md
{
  echo '## The last run'
  echo
  echo "$(date -u +%Y-%m-%d), $(nproc) × $(awk -F ': ' '/model name/ { print $2; exit }' /proc/cpuinfo), Linux $(uname -r | cut -d - -f 1),"
  echo "load $(cut -d ' ' -f 1-3 /proc/loadavg), disk: $(stat -f -c %T "$work"), compiler: $(c++ -dumpfullversion), Qt $(qmake6 -query QT_VERSION 2> /dev/null),"
  for peer in curl wget wget2 aria2c; do "$peer" --version | awk -v name="$peer" 'NR == 1 { match($0, /[0-9.]+[0-9]/); printf "%s %s, ", name, substr($0, RSTART, RLENGTH) }'; done
  echo
  echo "$(dpkg-query -W -f '${Package} ${Version}, ' libxml2 libgumbo1 nginx-light)medians of runs in turn."
  echo
  cat "$work/table"
} >> docs/performance.md
