#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Serves a folder on a free loopback port, each answer 20 ms late, over kept connections. Prints its origin."""

import functools
import http.server
import sys
import time


class SlowHandler(http.server.SimpleHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    wbufsize = 65536  # head and body leave together
    disable_nagle_algorithm = True

    def do_GET(self):
        time.sleep(0.02)
        super().do_GET()

    def log_message(self, *_):
        pass


handler = functools.partial(SlowHandler, directory=sys.argv[1])
with http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler) as server:
    print(f"http://127.0.0.1:{server.server_port}", flush=True)
    server.serve_forever()
