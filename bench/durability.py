#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What is in the folder after a power cut, at random moments of a batch and after its end.

quillforth-cli downloads a page of small files into a file system whose disk is a file of this program (FUSE,
behind a loop device). Every write and every flush that reaches the disk is recorded. For each of POINTS random
moments the disk is put together as a drive may leave it that loses power just then: all that was flushed, and of
what came later any writes, in any order. Then it is mounted, as after the next start, and two promises are checked:

- no final name has a byte missing or wrong, at any moment;
- from the end of the program on, all files are there, each with its comment.

Meanwhile another process forces the journal to the disk again and again, as databases do, which is when order
matters. Wants root, /dev/fuse, a loop device and mkfs of FILESYSTEM (ext4). CLI names the program; POINTS (20),
FILES (600) and SEED (1) the amount. Leaves with 1 when a promise was broken.
"""

import ctypes
import http.server
import os
import random
import struct
import subprocess
import sys
import tempfile
import threading
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
CLI = os.environ.get("CLI", ROOT + "/build/release/bin/quillforth-cli")
POINTS = int(os.environ.get("POINTS", "20"))
FILES = int(os.environ.get("FILES", "600"))
KIND = os.environ.get("FILESYSTEM", "ext4")
DISK_BYTES = 320 << 20
FORCE_EVERY = 0.05  # seconds between two commits that the other process asks for

HEADER = struct.Struct("<IIQQIIIHH")  # of a request: length, operation, number, node, and who asks
LOOKUP, FORGET, GETATTR, OPEN, READ, WRITE, RELEASE, FSYNC = 1, 2, 3, 14, 15, 16, 18, 20
FLUSH, INIT, INTERRUPT, BATCH_FORGET = 25, 26, 36, 42
ROOT_NODE, DISK_NODE = 1, 2
MAX_WRITE = 128 << 10
libc = ctypes.CDLL(None, use_errno=True)


class RecordedDisk:
    """A FUSE file system with one file, "disk", that notes what is written to it and when it is flushed."""

    def __init__(self, folder, content):
        self.content = content
        self.log = []  # (offset, bytes), or None for a flush
        self.folder = folder
        self.device = os.open("/dev/fuse", os.O_RDWR)
        options = f"fd={self.device},rootmode=40000,user_id=0,group_id=0".encode()
        if libc.mount(b"recorded", folder.encode(), b"fuse", 0, options) != 0:
            raise OSError(ctypes.get_errno(), "mount")
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        while True:
            try:
                request = os.read(self.device, MAX_WRITE + 4096)
            except OSError:
                return  # unmounted
            _, operation, number, node, *_ = HEADER.unpack_from(request)
            if operation in (FORGET, BATCH_FORGET, INTERRUPT):
                continue
            reply = self.answer(operation, node, request[HEADER.size:])
            error, data = (reply, b"") if isinstance(reply, int) else (0, reply)
            os.write(self.device, struct.pack("<IiQ", 16 + len(data), -error, number) + data)

    def answer(self, operation, node, body):
        if operation == INIT:
            return struct.pack("<IIIIHHIIHHI28x", 7, 31, 1 << 16, 0, 16, 8, MAX_WRITE, 1, 32, 0, 0)
        if operation == LOOKUP:
            return struct.pack("<QQQQII", DISK_NODE, 0, 9, 9, 0, 0) + self.attributes(DISK_NODE)
        if operation == GETATTR:
            return struct.pack("<QII", 9, 0, 0) + self.attributes(node)
        if operation == OPEN:
            return struct.pack("<QII", 1, 1, 0)  # straight to here, past the page cache
        if operation == READ:
            _, offset, size = struct.unpack_from("<QQI", body)
            return bytes(self.content[offset:offset + size])
        if operation == WRITE:
            _, offset, size = struct.unpack_from("<QQI", body)
            data = body[40:40 + size]
            self.content[offset:offset + size] = data
            self.log.append((offset, data))
            return struct.pack("<II", size, 0)
        if operation == FSYNC:
            self.log.append(None)
            return b""
        return b"" if operation in (RELEASE, FLUSH) else 38  # ENOSYS

    @staticmethod
    def attributes(node):
        mode, size = (0o40755, 0) if node == ROOT_NODE else (0o100600, DISK_BYTES)
        return struct.pack("<QQQQQQIIIIIIIIII", node, size, size // 512, 0, 0, 0, 0, 0, 0, mode, 1, 0, 0, 0, 4096, 0)


def body_of(name):
    return random.Random(name).randbytes(random.Random(name + "size").choice((700, 10_240, 40_000, 300_000)))


class Server(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        name = self.path.strip("/")
        names = (f'<a href="{i}.jpg">' for i in range(FILES))
        body = "".join(names).encode() if name == "index.html" else body_of(name)
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


def run(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout.strip()


def force_commits(folder, stop):
    with open(folder + "/.journal", "w", encoding="ascii") as file:
        while not stop.wait(FORCE_EVERY):
            file.write("x")
            file.flush()
            os.fsync(file.fileno())


def record(work, disk):
    """Runs the batch on the recorded disk; the length of the log when the program had ended."""
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Server)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    loop = run("losetup", "--find", "--show", disk.folder + "/disk")
    mounted = work + "/mounted"
    try:
        run("mount", loop, mounted)
        stop = threading.Event()
        forcing = threading.Thread(target=force_commits, args=(mounted, stop))
        forcing.start()
        os.mkdir(mounted + "/out")
        environment = dict(os.environ, HOME=work, XDG_CONFIG_HOME=work, XDG_DATA_HOME=work)
        page = f"http://127.0.0.1:{server.server_port}/index.html"
        try:
            subprocess.run([CLI, "get", "--local", "--page", "--to", mounted + "/out", page], check=True, env=environment,
                           stdout=subprocess.DEVNULL)
            end = len(disk.log)
            time.sleep(1)
        finally:
            stop.set()
            forcing.join()
    finally:
        subprocess.run(["umount", mounted], check=False)
        run("losetup", "--detach", loop)
        subprocess.run(["umount", disk.folder], check=False)
    return end


def disk_at(point, log, before, choice):
    image = bytearray(before)
    flushed = max((i for i in range(point) if log[i] is None), default=0)
    pending = [i for i in range(flushed, point) if log[i] and choice.random() < 0.5]
    for i in [i for i in range(flushed) if log[i]] + pending:
        offset, data = log[i]
        image[offset:offset + len(data)] = data
    return image


def check(work, image):
    """The final names found, and what is wrong with them."""
    path = work + "/image"
    with open(path, "wb") as file:
        file.write(image)
    mounted = work + "/mounted"
    run("mount", "-o", "loop", path, mounted)
    try:
        folder = mounted + "/out"
        names = [n for n in os.listdir(folder) if n[0] != "."] if os.path.isdir(folder) else []
        wrong = []
        for name in names:
            with open(folder + "/" + name, "rb") as file:
                found = file.read()
            if found != body_of(name):
                wrong.append(f"{name}: {len(found)} bytes of {len(body_of(name))}, {found.count(0)} of them zero")
        commented = [n for n in names if "user.xdg.comment" in os.listxattr(folder + "/" + n)]
        return len(names), len(commented), wrong
    finally:
        run("umount", mounted)


def main():
    choice = random.Random(int(os.environ.get("SEED", "1")))
    with tempfile.TemporaryDirectory(dir=os.environ.get("TMPDIR", "/dev/shm")) as work:
        for name in ("fuse", "mounted"):
            os.mkdir(work + "/" + name)
        path = work + "/image"
        with open(path, "wb") as file:
            file.truncate(DISK_BYTES)
        run("mkfs." + KIND, "-q", path)
        with open(path, "rb") as file:
            before = file.read()
        disk = RecordedDisk(work + "/fuse", bytearray(before))
        end = record(work, disk)
        print(f"{len(disk.log)} writes and flushes, {end} of them by the end of the program")
        broken = 0
        points = [choice.randrange(end) for _ in range(POINTS * 3 // 4)]
        points += [choice.randrange(end, len(disk.log) + 1) for _ in range(POINTS - len(points))]
        for point in sorted(points):
            found, commented, wrong = check(work, disk_at(point, disk.log, before, choice))
            lost = point >= end and min(found, commented) < FILES
            broken += bool(wrong) or lost
            print(f"after {point:6}: {found} files, {commented} with comment" + (", some are lost" if lost else ""))
            for line in wrong:
                print("  " + line)
        print(f"{broken} of {POINTS} moments break a promise")
        return 1 if broken else 0


if __name__ == "__main__":
    sys.exit(main())
