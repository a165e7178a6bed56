#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The real window under random commands, against a server of random delays and faults, every URL accounted for.

    window_storm.py SECONDS SEED

For about SECONDS the program (PROGRAM) is started, stormed for ROUND (12) seconds, ended in one of several ways, and
started again. It writes what passes between it and its services; from that and from the files on the disk it is worked
out afterwards what became of each URL:

    entered --> waits --> asked for --> settled: done, failed, cancelled, deleted, emptied, lost by a rule, ...

What no rule accounts for is a fault. Prints the counts, and to REPORT (standard error) what is known of each fault;
leaves with 1 when there was one. Wants a home, a screen and a bus of its own, as window_storm.sh has them.
"""

import collections
import dataclasses
import http.server
import itertools
import os
import random
import socket
import struct
import subprocess
import sys
import threading
import time

from soak import head

SECONDS, SEED = int(sys.argv[1]), int(sys.argv[2])
ROUND = os.environ.get("ROUND", "12")
HOME = os.environ["HOME"]
FOLDERS = [os.path.join(HOME, folder) for folder in (".local/share/Tessary Software/Quillforth", "a", "b")]
NOT_FOR_ALL = ("locked", "missing", "cut", "reset", "held")
SHOWN_OF_A_KIND = 3


def pieces(answer, rest):
    size = len(answer.whole) // 8 + 1
    return [step for byte in range(0, len(answer.whole), size) for step in (answer.whole[byte : byte + size], rest)]


# What the server does for "/KIND/NAME": sends bytes, rests for seconds, closes or resets the connection. "any" is one
# of these, so often in a hundred.
KINDS = {
    "plain": (45, lambda a: [a.whole]),
    "late": (17, lambda a: [a.rest, a.whole]),
    "slow": (8, lambda a: pieces(a, a.rest / 8)),
    "drip": (0, lambda a: pieces(a, 0.4)),
    "ended": (4, lambda a: [head(b"", a.type, "Connection: close", length="none") + a.body, "close"]),
    "moved": (5, lambda a: [head(b"", f"Location: /plain/{a.name}", status="HTTP/1.1 302 Found")]),
    "renamed": (4, lambda a: [head(a.body, a.type, f"Content-Disposition: a; filename={a.shared}") + a.body]),
    "locked": (4, lambda a: [a.whole if a.is_known else
                             head(b"", 'WWW-Authenticate: Basic realm="r"', status="HTTP/1.1 401 No")]),
    "missing": (5, lambda a: [head(b"No.", "Content-Type: text/html", status="HTTP/1.1 404 No") + b"No."]),
    "cut": (3, lambda a: [a.whole[: -len(a.body) // 2], "close"]),
    "reset": (2, lambda a: [a.whole[: -len(a.body) // 2], "reset"]),
    "held": (3, lambda a: [3 + a.rest, "close"]),
}  # fmt: skip


def dice_of(name, what):
    return random.Random(f"{SEED} {name} {what}")


def is_page(name):
    return name.endswith(".html") or ("." not in name and dice_of(name, "page").random() < 0.5)


def kind_of(path):
    kind, name = path.split("/")[-2:]
    if kind == "any":
        (kind,) = dice_of(name, "kind").choices(list(KINDS), [weight for weight, _ in KINDS.values()])
    return "late" if is_page(name) and kind in ("renamed", "locked") else kind


def links_of(name):
    dice = dice_of(name, "links")
    stem = name.removesuffix(".html")
    return [f"/any/{stem}-{i}{dice.choice(('.bin', '.zip', '.png', '.dat'))}" for i in range(dice.randint(1, 8))]


def body_of(name):
    if is_page(name):
        return "".join(["<html>", *(f'<a href="{link}">a link</a>\n' for link in links_of(name))]).encode()
    dice = dice_of(name, "body")
    sizes = dice.choices((range(200, 8_200), range(20_000, 320_000), (3_000_000,)), (70, 25, 5))[0]
    return name.encode() + b"\n" + dice.randbytes(dice.choice(sizes))


class Answer(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    disable_nagle_algorithm = True

    def log_message(self, *arguments):
        pass

    def prepare(self):
        self.name = self.path.split("/")[-1]
        dice = dice_of(self.name, "rest")
        self.rest = dice.uniform(0.02, dice.choice((0.4, 0.4, 0.4, 2.5)))
        self.type = "Content-Type: " + ("text/html" if is_page(self.name) else "application/octet-stream")

    def do_HEAD(self):
        self.prepare()
        time.sleep(self.rest + (3 if kind_of(self.path) == "held" else 0))
        self.wfile.write(head(b"", self.type))

    def do_GET(self):
        self.prepare()
        self.body = body_of(self.name)
        self.whole = head(self.body, self.type) + self.body
        self.shared = f"shared-{dice_of(self.name, 'shared').randrange(5)}.bin"
        self.is_known = self.headers["Authorization"] == "Basic dXNlcjp3b3Jk"  # user:word
        for step in KINDS[kind_of(self.path)][1](self):
            if isinstance(step, bytes):
                self.wfile.write(step)
            elif isinstance(step, float):
                time.sleep(step)
            else:
                self.close_connection = True
            if step == "reset":
                self.connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
                self.connection.close()


class Server(http.server.ThreadingHTTPServer):
    def handle_error(self, request, client_address):
        pass  # the client has gone, or "reset" has


@dataclasses.dataclass
class Entry:
    state: str = "entered"  # "waits", "loads", "asked", "settled"
    fate: str = ""
    is_fault: bool = False
    page: str = ""  # that it is a link of
    is_paced: bool = False  # waits for its turn in the paced intake
    stands: bool = False  # its file had its final name
    is_sorted_away: bool = False  # from where it had finished, before that was told
    history: list = dataclasses.field(default_factory=list)


@dataclasses.dataclass
class Removal:
    """A command that may take entries out of the queue, as it was when it was given."""

    command: str
    page: str  # that is loaded when it is done indeed
    named: set
    waiting: list  # in the paced intake, maybe
    has_discarded: bool = False

    def fate(self):
        if self.command != "Delete":
            return f"emptied by {self.command}"
        return "deleted by a command that named it" if self.named else "emptied by Delete without a selection"


class Ledger:
    """What one run of the program wrote: a method for each thing that happens, called with its cells."""

    def __init__(self, origin):
        self.origin = origin
        self.entries = collections.defaultdict(Entry)
        self.info = collections.Counter()
        self.faults = collections.defaultdict(list)
        self.queue, self.under_way, self.queued_pages = set(), set(), set()
        self.removals, self.running = {}, None
        self.cancelled_by_name, self.given_up = set(), set()
        self.checks_offline = 0
        self.is_quitting = self.are_commands_waiting = False
        self.now, self.recent = "", collections.deque(maxlen=12)

    def take(self, line):
        self.now, what, *cells = line.split("\t")
        if what in ("said", "give", "cancel", "given up", "quit"):
            self.recent.append(" ".join((self.now, what, *cells[:3])))
        getattr(self, "on_" + what.replace(" ", "_"))(*cells)

    def note(self, url, text):
        self.entries[url].history.append(f"{self.now} {text}")

    def on_fault(self, what, url=""):
        history = "; ".join(self.entries[url].history) if url in self.entries else ""
        self.faults[what].append(f"{url}\n      it: {history}\n      commands: {'; '.join(self.recent)}")

    def on_said(self, text):
        pass

    def on_info(self, text):
        self.info["info: " + text] += 1

    # How URLs come in.

    def on_in(self, by, url):
        if url in self.entries:
            return self.on_fault("came in a second time", url)
        self.note(url, by)
        self.info["in: " + by] += 1

    def on_paced(self, by, url):
        self.on_in(by, url)
        self.entries[url].is_paced = True

    def on_loading(self, url):
        self.expect(url, ("entered",), "loads")

    def on_read(self, url):
        for link in links_of(url.split("/")[-1]):
            self.on_in("links of pages", self.origin + link)
            self.entries[self.origin + link].page = url
        self.settle(url, "done: page read")

    def on_unread(self, url):
        fate = "import given up" if url in self.given_up else "failed: page"
        self.settle(url, "lost at the end: page loading" if self.is_quitting else fate)

    def on_given_up(self, url):
        self.note(url, "import given up")
        self.given_up.add(url)

    # What the queue and the downloads do.

    def expect(self, url, states, state):
        entry = self.entries[url]
        if not entry.history:
            self.on_fault(f"{state}, and nobody brought it in", url)
        elif entry.state not in states:
            self.on_fault(f"{state} after it was {entry.state}", url)
        self.note(url, state)
        entry.state = state
        if entry.page and state in ("waits", "asked"):
            self.queued_pages.add(entry.page)

    def on_queue(self, *urls):
        if len(set(urls)) < len(urls):
            self.on_fault("one waits twice")
        for url in set(urls) - self.queue:  # the head may go to the end
            self.expect(url, ("entered", "waits"), "waits")
        for url in self.queue - set(urls):
            self.note(url, "left the queue")
        self.queue = set(urls)

    def on_asked(self, url):
        if self.under_way:
            self.on_fault("is asked for while another one is under way", url)
        self.expect(url, ("entered", "waits"), "asked")
        self.under_way.add(url)

    def on_began(self, url):
        self.note(url, "began")

    def on_offline(self, _=""):
        self.checks_offline += 1

    def on_lost(self, url):
        self.checks_offline -= 1
        self.settle(url, "lost by rule: not connected")

    def settle(self, url, fate, is_fault=False):
        entry = self.entries[url]
        self.under_way.discard(url)
        self.note(url, fate)
        if entry.fate:
            return self.on_fault("came to a second end: " + fate, url)
        entry.state, entry.fate, entry.is_fault = "settled", fate, is_fault
        if is_fault:
            self.on_fault(fate, url)

    def end(self, url, fate):
        if url not in self.under_way:
            self.on_fault("ended without being under way", url)
        self.settle(url, fate)

    def on_finished(self, url, path, is_there):
        self.note(url, "finished as " + path)
        self.entries[url].is_sorted_away = not is_there
        self.end(url, "done")

    def on_failed(self, url, reason):
        self.note(url, reason)
        is_folder_missing = reason.startswith("There is no destination folder")
        self.end(url, "failed: no folder was chosen" if is_folder_missing else "failed")

    def on_cancelled(self, url):
        is_named = url in self.cancelled_by_name
        self.settle(url, f"cancelled by a command that {'named' if is_named else 'did not name'} it", not is_named)

    # What the commands do that take something away.

    def on_cancel(self, url, is_there):
        self.cancelled_by_name.add(url)
        self.note_standing(is_there)

    def note_standing(self, is_there):
        for url in self.under_way if is_there else ():
            self.entries[url].stands = True

    def on_give(self, number, command, page, *named):
        waiting = [url for url, entry in self.entries.items() if entry.is_paced and entry.state == "entered"]
        self.removals[number] = Removal(command, page, set(named), [] if command == "Delete" else waiting)

    def on_begin(self, number):
        self.running = self.removals[number]

    def on_discarded(self, url):
        removal = self.running
        if removal:
            removal.has_discarded = True
        if removal and (not removal.named or url in removal.named):
            self.settle(url, removal.fate())
        elif url in self.given_up:
            self.settle(url, "import given up")
        else:
            self.settle(url, "left the queue by no command that named it", True)

    # What waited for its turn before the command was given, and waits still, comes no more.
    def on_done(self, number, undo):
        removal, self.running = self.removals.pop(number), None
        if removal.has_discarded and undo != "Undo " + removal.command:
            self.on_fault(f"{removal.command} cannot be undone: the next step is {undo}")
        is_done = not removal.page or self.entries[removal.page].state != "entered"
        for url in removal.waiting if is_done else ():
            if self.entries[url].state == "entered":
                self.settle(url, removal.fate() + ", before its turn")

    # The end.

    def settle_entered(self, url):
        entry = self.entries[url]
        if url in self.given_up:
            self.settle(url, "import given up before it began")
        elif entry.page in self.given_up and entry.page not in self.queued_pages:
            self.settle(url, "on the page of an import given up")
        else:
            self.settle(url, "is nowhere, and nothing was told of it", True)

    def on_rest(self, _=""):
        for url, entry in list(self.entries.items()):
            if entry.state == "entered":
                self.settle_entered(url)
            elif entry.state != "settled":
                self.settle(url, f"{entry.state}, and never came to an end", True)
        if self.checks_offline:
            self.on_fault("checks without a connection are not as many as the URLs lost")

    def on_unasked(self, are_commands_waiting):
        unfinished = sum(entry.state in ("waits", "loads", "asked") for entry in self.entries.values())
        if unfinished or are_commands_waiting:
            self.on_fault(f"ended without asking, and lost {unfinished}")

    def on_quit(self, are_commands_waiting, is_there):
        self.is_quitting, self.are_commands_waiting = True, are_commands_waiting
        self.note_standing(is_there)

    def settle_after_end(self):
        if not self.is_quitting:
            self.on_fault("ended by itself")
        for url, entry in list(self.entries.items()):
            if entry.state == "entered" and entry.page:
                self.settle(url, "lost at the end: on a page just read")
            elif entry.state == "entered" and self.are_commands_waiting:
                self.settle(url, "lost at the end: command not done")
            elif entry.state == "entered":
                self.settle_entered(url)
            elif entry.state == "waits" and url not in self.queue:
                self.settle(url, "left the queue, and nothing was told of it", True)
            elif entry.state != "settled":
                fates = {"waits": "waiting", "loads": "page loading", "asked": "under way"}
                self.settle(url, "lost at the end: " + fates[entry.state])


class Storm:
    def __init__(self, origin):
        self.origin = origin
        self.standing = set()  # names whose files the run before has left
        self.counts = collections.Counter()
        self.faults = 0

    def run(self, phase):
        ledger = Ledger(self.origin)
        arguments = [os.environ["PROGRAM"], str(phase), str(SEED), ROUND, self.origin]
        program = subprocess.run(arguments, stdout=subprocess.PIPE, check=False)
        for line in program.stdout.decode().splitlines():
            ledger.take(line)
        ledger.settle_after_end()
        if program.returncode != 0:
            ledger.on_fault(f"a round ended with status {program.returncode}")
        self.check_files(ledger)
        self.report(ledger, phase)

    def check_files(self, ledger):
        """Every file is whole and has its own comment, none is hidden, and what is done is there."""
        whole = collections.defaultdict(list)
        urls = {url.split("/")[-1]: url for url in ledger.entries}
        for path in (os.path.join(base, file) for top in FOLDERS for base, _, files in os.walk(top) for file in files):
            with open(path, "rb") as file:
                body = file.read()
            name = body.split(b"\n", 1)[0].decode(errors="replace")
            if os.path.basename(path).startswith("."):
                ledger.on_fault("a hidden file was left", path)
            elif body != body_of(name):
                ledger.on_fault("a file is not what the server has", path)
            else:
                whole[name].append(path)
                if name in urls:
                    self.check_file(ledger, urls[name], path)
        for name, url in urls.items():
            if "/" in url:
                self.check_entry(ledger, url, len(whole[name]))
        ledger.info["info: files of the run before, looked for"] += len(self.standing)
        for name in self.standing - {name for name in whole if whole[name]}:
            ledger.on_fault("a file of the run before is gone", name)
        for name in whole.keys() - urls.keys():
            for path in whole[name]:
                os.remove(path)
        kept = {name for name in whole.keys() & urls.keys() if whole[name]}
        self.standing = {name for name in kept if kind_of(urls[name]) != "renamed"}

    @staticmethod
    def check_file(ledger, url, path):
        entry = ledger.entries[url]
        ledger.note(url, "stands as " + path)
        if entry.fate != "done":
            ledger.on_info("whole file of a URL that was " + entry.fate)
        if entry.fate.startswith("failed"):
            ledger.on_fault("a download has failed, and its file stands", url)
        try:
            comment = os.getxattr(path, "user.xdg.comment").decode()
        except OSError:
            comment = ""
        # A sort takes what stands in the folder, also what is to get its comment with the end of the sort.
        if not comment and entry.is_sorted_away:
            ledger.on_info("sorted before its end was told, and without a comment")
        elif not comment and entry.fate == "done":
            ledger.on_fault("a file that is done has no comment", url)
        elif comment not in ("", url):
            ledger.on_fault("a file has another one's comment", url)

    @staticmethod
    def check_entry(ledger, url, file_count):
        entry, kind = ledger.entries[url], kind_of(url)
        if entry.fate in ("failed", "failed: page") and kind not in NOT_FOR_ALL:
            ledger.on_fault("failed, though the server gives it to everybody", url)
        if entry.fate.startswith("done") and kind in NOT_FOR_ALL and kind != "locked":
            ledger.on_fault("done, though the server does not give it", url)
        # Of those that share a name, a later one may have taken the place.
        if (entry.fate == "done" or entry.stands) and kind != "renamed" and file_count != 1:
            ledger.on_fault(f"its file had its final name, and there are {file_count} of it", url)

    def report(self, ledger, phase):
        self.counts.update(ledger.info)
        self.counts.update(entry.fate for entry in ledger.entries.values() if not entry.is_fault)
        self.faults += len(ledger.faults)
        with open(os.environ.get("REPORT", "/dev/stderr"), "a", encoding="utf-8") as report:
            for what, each in ledger.faults.items():
                self.counts["FAULT: " + what] += len(each)
                print(f"  {what} (round {phase})", *each[:SHOWN_OF_A_KIND], sep="\n    ", file=report)


def main():
    for folder in FOLDERS:
        os.makedirs(folder)
    end = time.monotonic() + SECONDS
    with Server(("127.0.0.1", 0), Answer) as server:
        threading.Thread(target=server.serve_forever, daemon=True).start()
        storm = Storm(f"http://127.0.0.1:{server.server_address[1]}")
        for phase in itertools.count(1):
            if time.monotonic() >= end:
                break
            storm.run(phase)
    print(f"Seed {SEED}, {phase - 1} rounds")
    for name, count in sorted(storm.counts.items()):
        print(f"{count:8}  {name}")
    came_in = sum(count for name, count in storm.counts.items() if name.startswith("in: "))
    accounted = sum(count for name, count in storm.counts.items() if not name.startswith(("in: ", "info: ", "FAULT: ")))
    print(f"{came_in:8}  URLs came in, {accounted} are accounted for")
    return 1 if storm.faults or came_in != accounted else 0


if __name__ == "__main__":
    sys.exit(main())
