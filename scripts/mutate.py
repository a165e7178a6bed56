#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Plants small faults in the core rooms, and says which of them the tests of the room notice.

  scripts/mutate.py SEED COUNT [FILE:LINE...]

SEED draws the faults: a comparison turned, a bound off by one, a check left out. FILE:LINE tries what can go wrong
there, and nothing else. Works in a copy, build/mutants, of what is committed. One line a fault:
"killed" or "lived", the place, and the line before and after. Ends with 1 when one in ten or more live.
"""
import os
import pathlib
import random
import re
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
COPY = ROOT / "build/mutants"
TESTS = {
    "linkextract": ["linkextract_tests"],
    "classify": ["test_classify"],
    "fileops": ["test_fileops", "test_aggregation", "test_finder_comment"],
    "app": ["test_app"],
    "net": ["test_net", "terminal_test"],
    "linux/transfer": ["test_transfer"],
}
FAULTS = [(re.compile(pattern), new) for pattern, new in [
    (r" < ", " <= "), (r" <= ", " < "), (r" > ", " >= "), (r" >= ", " > "), (r" == ", " != "), (r" != ", " == "),
    (r" && ", " || "), (r" \|\| ", " && "),
    (r" \+ 1\b", " + 2"), (r" - 1\b", " - 0"), (r"\+\+(?=\w)", "--"),
    (r"(k[A-Z]\w*(?: = |\{))(?=\d+[;}])", r"\1 1 + "),
    (r"\bif \((?=.*\) (?:return|continue|break))", "if (false && "), (r"\bif \(!", "if ("),
]]
PASSED_OVER = re.compile(r"^\s*(//|#|template|static_assert|namespace|using)|operator|LOCALIZED|^\s*for \(.*\bbegin\(")


def faults():
    """Every fault that may be planted: room, file, number of the line, the line, and the line with the fault."""
    for room in TESTS:
        for path in sorted((COPY / room).glob("*.cpp")):
            for number, line in enumerate(path.read_text().splitlines(), 1):
                if PASSED_OVER.search(line):
                    continue
                code = line.split("  // ")[0]
                for pattern, new in FAULTS:
                    for match in pattern.finditer(code):
                        changed = code[:match.start()] + match.expand(new) + code[match.end():]
                        yield room, path, number, line, changed


def run(*command, seconds=900):
    """None when it took too long."""
    try:
        return subprocess.run(command, cwd=COPY, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=seconds,
                              env=dict(os.environ, GTEST_FAIL_FAST="1")).returncode
    except subprocess.TimeoutExpired:
        return None


def verdict(limits, room, path, number, line, changed):
    lines = path.read_text().splitlines(keepends=True)
    assert lines[number - 1].rstrip("\n") == line
    try:
        path.write_text("".join(lines[:number - 1] + [changed + "\n"] + lines[number:]))
        for test in TESTS[room]:
            if run("nice", "ninja", "-C", "build/dev", test) != 0:
                return "no code"  # -Werror may see it, or the program that lists its cases ends
            if run("nice", "build/dev/bin/" + test, seconds=limits[test]) != 0:
                return "killed"
        return "lived"
    finally:
        path.write_text("".join(lines))


def main():
    seed, wanted, places = int(sys.argv[1]), int(sys.argv[2]), sys.argv[3:]
    if COPY.exists():
        head = subprocess.check_output(["git", "-C", ROOT, "rev-parse", "HEAD"], text=True).strip()
        subprocess.run(["git", "-C", COPY, "checkout", "-q", "--detach", "-f", head], check=True)
    else:
        subprocess.run(["git", "-C", ROOT, "worktree", "add", "-q", "--detach", COPY], check=True)
    tests = sorted({test for room in TESTS.values() for test in room})
    if run("cmake", "--preset", "dev") != 0 or run("nice", "ninja", "-C", "build/dev", *tests, seconds=7200) != 0:
        sys.exit("the copy does not build")
    limits = {}
    for test in tests:
        start = time.monotonic()
        if run("nice", "build/dev/bin/" + test) != 0:
            sys.exit(test + " fails without a fault")
        limits[test] = 30 + 4 * (time.monotonic() - start)
    drawn = list(faults())
    random.Random(seed).shuffle(drawn)
    if places:
        drawn = [fault for fault in drawn if f"{fault[1].relative_to(COPY)}:{fault[2]}" in places]
    counts = {"killed": 0, "lived": 0, "no code": 0}
    for fault in drawn:
        if counts["killed"] + counts["lived"] == wanted:
            break
        result = verdict(limits, *fault)
        counts[result] += 1
        if result != "no code":
            place = f"{fault[1].relative_to(COPY)}:{fault[2]}"
            print(f"{result} {place}: {fault[3].strip()}  ->  {fault[4].strip()}", flush=True)
    print(counts)
    sys.exit(10 * counts["lived"] > counts["killed"] + counts["lived"])


main()
