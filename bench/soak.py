#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""quillforth-cli against a server of faults, ended in the middle again and again, every URL accounted for.

REQUESTS (5000) URLs are fetched in runs of some dozens, with two runs into one folder at a time now and then. The
server decides by the URL what goes wrong: wrong lengths, cuts, resets, stray bytes, silence, status lines that are
none. About every third run is killed (kill -9), interrupted or terminated at a random moment. After each run:

- every file under a final name has exactly the bytes of its URL;
- unless it was killed, each URL that was given was told as done or failed, or counted as not fetched; what must
  fail never was done, what must succeed never failed; and no hidden file is left.
SEED (the time) gives the same URLs, answers and dice, though not the same moments. CLI names the program. Prints
what came of the URLs; leaves with 1 when a promise was broken.
"""

import collections
import json
import os
import random
import shutil
import signal
import socket
import socketserver
import struct
import subprocess
import sys
import tempfile
import threading
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
CLI = os.environ.get("CLI", ROOT + "/build/release/bin/quillforth-cli")
REQUESTS = int(os.environ.get("REQUESTS", "5000"))
SEED = int(os.environ.get("SEED", str(int(time.time()))))
LONGEST_RUN = 120  # seconds


def content(name):
    """The bytes of the URL that ends in `name`: from nothing to 200 KB."""
    dice = random.Random(f"{SEED} {name}")
    return dice.randbytes(dice.choice((0, 1, 100, 5_000, 20_000, 200_000)))


def head(body, *fields, status="HTTP/1.1 200 OK", length=None):
    lines = [status, *fields]
    if length != "none":
        lines.append(f"Content-Length: {len(body) if length is None else length}")
    return "\r\n".join(lines).encode() + b"\r\n\r\n"


def chunks(body):
    parts = [body[i : i + 3000] for i in range(0, len(body), 3000)]
    return b"".join(b"%x\r\n%s\r\n" % (len(part), part) for part in parts)


def half(body):
    return body[: len(body) // 2]


# What the server sends for "KIND-NUMBER.bin": pieces, between which it rests a moment; then whether it goes on
# with the connection ("keep"), closes it ("close") or resets it ("reset").
GOOD = {
    "plain": lambda b, n: ([head(b) + b], "keep"),
    "late": lambda b, n: ([b"", head(b) + b], "keep"),
    "slow": lambda b, n: ([head(b), half(b), b[len(b) // 2 :]], "keep"),
    "chunked": lambda b, n: ([head(b, "Transfer-Encoding: chunked", length="none") + chunks(b) + b"0\r\n\r\n"], "keep"),
    "ended": lambda b, n: ([head(b, "Connection: close", length="none") + b], "close"),
    "vanishing": lambda b, n: ([head(b) + b], "close"),  # without a word; the next request finds it closed
    "interim": lambda b, n: ([b"HTTP/1.1 103 Early Hints\r\n\r\n", head(b) + b], "keep"),
    "moved": lambda b, n: ([head(b"", f"Location: /plain/{n}", status="HTTP/1.1 302 Found")], "keep"),
    "stray": lambda b, n: ([head(b) + b + b"HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nEVIL"], "keep"),
    "named": lambda b, n: ([head(b, f'Content-Disposition: attachment; filename="{n}"') + b], "keep"),
}
BAD = {
    "missing": lambda b, n: ([head(b, status="HTTP/1.1 404 Not Found") + b], "keep"),
    "broken": lambda b, n: ([head(b, status="HTTP/1.1 500 No") + b], "keep"),
    "cut": lambda b, n: ([head(b, length=len(b) + 7) + b], "close"),
    "reset": lambda b, n: ([head(b, length=len(b) + 100_000) + b], "reset"),
    "cutchunk": lambda b, n: ([head(b, "Transfer-Encoding: chunked", length="none") + chunks(b)], "close"),
    "badchunk": lambda b, n: ([head(b, "Transfer-Encoding: chunked", length="none") + b"zz\r\n"], "close"),
    "lengths": lambda b, n: ([head(b, f"Content-Length: {len(b) + 1}") + b], "keep"),
    "coded": lambda b, n: ([head(b, "Transfer-Encoding: gzip, chunked", length="none") + chunks(b) + b"0\r\n\r\n"], "keep"),
    "nonsense": lambda b, n: ([b"HTTP/A.B 200 OK\r\n\r\n" + b], "close"),
    "folded": lambda b, n: ([b"HTTP/1.1 200 OK\r\n X: y\r\n\r\n" + b], "close"),
    "silent": lambda b, n: ([], "close"),
    "circle": lambda b, n: ([head(b"", f"Location: /circle/{n}", status="HTTP/1.1 301 Again")], "keep"),
}


class Connection(socketserver.StreamRequestHandler):
    disable_nagle_algorithm = True

    def handle(self):
        try:
            while self.answer():
                pass
        except OSError:
            pass  # the client has gone

    def answer(self):
        line = self.rfile.readline(65536).split()
        while self.rfile.readline(65536) not in (b"\r\n", b""):
            pass
        if len(line) != 3:
            return False
        kind, name = line[1].decode().split("/")[-2:]
        pieces, after = (GOOD.get(kind) or BAD[kind])(content(name), name)
        for i, piece in enumerate(pieces):
            if i > 0 or not piece:
                time.sleep(random.uniform(0, 0.03))
            self.wfile.write(piece)
        if after == "reset":
            self.request.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
            self.request.close()
        return after == "keep"


class Server(socketserver.ThreadingTCPServer):
    daemon_threads = True
    request_queue_size = 256

    def handle_error(self, request, client_address):
        pass  # closed under its feet, by "reset"


class Soak:
    def __init__(self, base, work):
        self.base, self.work = base, work
        self.dice = random.Random(SEED)
        self.counts = collections.Counter()
        self.faults = []
        self.number = 0

    def urls(self, count):
        kinds = self.dice.choices(list(GOOD) + list(BAD), [4] * len(GOOD) + [1] * len(BAD), k=count)
        self.number += count
        return [f"{self.base}/{kind}/{self.number - i:06}.bin" for i, kind in enumerate(kinds)]

    def start(self, folder, urls):
        ahead = str(self.dice.choice((0, 0, 3, 8)))
        command = [CLI, "get", "--local", "--file", "--json", "--ahead", ahead, "--to", folder, *urls]
        environment = {"PATH": os.environ["PATH"], "HOME": self.work, "LC_ALL": "C.UTF-8"}
        return subprocess.Popen(command, env=environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def round(self, folder):
        """One program or two at a time, each of which may be ended before its end."""
        running = []
        for _ in range(1 if self.dice.random() < 0.8 else 2):
            urls = self.urls(self.dice.randint(10, 60))
            ending = self.dice.choice((None, None, None, None, signal.SIGKILL, signal.SIGINT, signal.SIGTERM))
            running.append((urls, ending, self.start(folder, urls)))
        for urls, ending, program in running:
            if ending is not None:
                time.sleep(self.dice.uniform(0, 1.5))
                program.send_signal(ending)
        was_killed = False
        for urls, ending, program in running:
            try:
                output, errors = program.communicate(timeout=LONGEST_RUN)
            except subprocess.TimeoutExpired:
                program.kill()
                output, errors = program.communicate()
                self.faults.append(f"a run of {len(urls)} URLs hung")
            was_killed |= program.returncode == -signal.SIGKILL
            self.account(urls, ending, program.returncode, output, errors)
        self.look_at_files(folder, was_killed)

    def account(self, urls, ending, status, output, errors):
        told = {}
        end = None
        for line in output.decode().splitlines():
            try:
                event = json.loads(line)
            except ValueError:
                if status != -signal.SIGKILL:
                    self.faults.append(f"no JSON: {line!r}")
                continue
            if event["event"] in ("done", "failed"):
                if event["url"] in told:
                    self.faults.append(f"told twice: {event}")
                told[event["url"]] = event
            elif event["event"] == "end":
                end = event
        for url, event in told.items():
            if (event["event"] == "done") != (url.split("/")[-2] in GOOD):
                self.faults.append(f"{event}")
            self.counts[event["event"]] += 1
        if status == -signal.SIGKILL:
            self.counts["waiting at a kill"] += len(urls) - len(told)
        elif end is None and status in (-signal.SIGINT, -signal.SIGTERM) and not output:
            self.counts["ended before the start"] += len(urls)
        elif end is None:
            self.faults.append(f"a run ended with {status} and no end: {errors.decode()[-500:]}")
        else:
            self.counts["not fetched"] += end["notFetched"]
            if end["done"] + end["failed"] + end["notFetched"] != len(urls):
                self.faults.append(f"{len(urls)} URLs were given: {end}")
            if ending is None and end["notFetched"]:
                self.faults.append(f"nobody ended the run: {end}, {errors.decode()[-500:]}")

    def look_at_files(self, folder, was_killed):
        for name in os.listdir(folder):
            path = os.path.join(folder, name)
            if name.startswith("."):
                if not was_killed:
                    self.faults.append(f"a hidden file is left: {name}")
                continue
            with open(path, "rb") as file:
                if file.read() != content(name[:6] + ".bin"):
                    self.faults.append(f"wrong bytes in {name}")
            self.counts["files with the right bytes"] += 1
            os.remove(path)

    def run(self):
        folder = os.path.join(self.work, "files")
        os.mkdir(folder)
        while self.number < REQUESTS:
            self.round(folder)
        for name, count in sorted(self.counts.items()):
            print(f"{count:8}  {name}")
        print(f"{self.number:8}  URLs given, {len(self.faults)} faults")
        for fault in self.faults[:50]:
            print("FAULT:", fault)
        return 1 if self.faults else 0


def main():
    print(f"Seed {SEED}")
    with Server(("127.0.0.1", 0), Connection) as server:
        threading.Thread(target=server.serve_forever, daemon=True).start()
        work = tempfile.mkdtemp(prefix="quillforth-soak.")
        try:
            return Soak(f"http://127.0.0.1:{server.server_address[1]}", work).run()
        finally:
            shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
