#!/usr/bin/env python3
"""A web server on loopback that plays the maker's site, and misbehaves where it is asked to.

Started by itself it serves a folder, prints its ports (http, https, https with another host's certificate, proxies) on one line and
then every request; it ends when its input does. `folder`/ca.pem is what its certificates are trusted by.
"""

import base64
import gzip
import hashlib
import http.server
import pathlib
import re
import select
import socket
import ssl
import subprocess
import sys
import threading
import time
import urllib.parse

PAGE = b"<p>All is well.</p>" * 20
# What is answered to the first part of a path, with the second part or the parameter.
ANSWERS = {
    "page": lambda _: {"body": PAGE},
    "more": lambda _: {"body": PAGE + b"and more", "length": len(PAGE), "end": "hang up"},
    "early": lambda _: {"body": PAGE, "length": 100_000, "end": "hang up"},
    "stall": lambda _: {"body": PAGE, "length": 100_000, "end": "silence"},
    "huge": lambda _: {"body": PAGE, "length": 10_000_000_000, "end": "silence"},
    "endless": lambda _: {"body": PAGE, "length": None, "end": "hang up"},
    "empty": lambda _: {"body": b""},
    "words": lambda before: {"body": b"x" * int(before) + b"404 not found" + b"x" * 2000},
    "status": lambda code: {"body": PAGE, "code": int(code)},
    "away": lambda to: {"body": b"", "code": 302, "Location": to},
    "loop": lambda _: {"body": b"", "code": 302, "Location": "/loop"},
    "hops": lambda count: {"body": b"", "code": 302, "Location": f"/hops/{int(count) - 1}" if int(count) > 1 else "/page"},
    "gzip": lambda _: {"body": gzip.compress(PAGE), "Content-Encoding": "gzip"},
    "bomb": lambda size: {"body": gzip.compress(b"<" * int(size) * 1_000_000), "Content-Encoding": "gzip"},
    "long": lambda size: {"body": b"y" * int(size) * 1_000_000},
}


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        self.server.site.note(self.path)
        parts = urllib.parse.urlsplit(self.path)
        name, _, more = parts.path.strip("/").partition("/")
        trick = getattr(self, "trick_" + name, None)
        try:
            if name in ANSWERS:
                self.answer(**ANSWERS[name](more or parts.query.partition("=")[2]))
            elif trick:
                trick(more)
            else:
                self.serve_file(parts.path)
        except (BrokenPipeError, ConnectionResetError, ssl.SSLError):
            self.server.site.given_up.append(self.path)  # the other side has had enough

    def log_message(self, *_):
        pass

    def answer(self, body, code=200, length=-1, end=None, **headers):
        self.send_response(code)
        if length is not None:
            self.send_header("Content-Length", str(len(body) if length < 0 else length))
        for key, value in headers.items():
            self.send_header(key, value)
        self.end_headers()
        self.wfile.write(body)
        self.wfile.flush()
        if end == "silence":
            self.wait_for_the_other_side()
        self.close_connection = self.close_connection or end is not None

    def wait_for_the_other_side(self):
        """Silence, until it closes the connection."""
        self.connection.settimeout(60)
        try:
            self.connection.recv(1)
        except OSError:
            pass
        self.server.site.given_up.append(self.path)
        self.close_connection = True

    def serve_file(self, path):
        site = self.server.site
        file = site.folder / path.strip("/")
        if path in site.slow:
            self.answer_slowly(file.read_bytes(), lambda: site.go_on.wait(0.2))
        elif file.is_file():
            self.answer(file.read_bytes())
        else:
            self.answer(b"<h1>Nothing here</h1>", 404)

    def answer_slowly(self, body, wait):
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        piece = len(body) // 20 + 1
        for at in range(0, len(body), piece):
            self.wfile.write(body[at:at + piece])
            self.wfile.flush()
            wait()

    def trick_echo(self, _):
        self.answer("\n".join(self.headers.get(name, "") for name in ("User-Agent", "Authorization")).encode())

    def trick_trickle(self, _):
        self.send_response(200)
        self.send_header("Content-Length", "100000")
        self.end_headers()
        while True:
            self.wfile.write(b"<p>")
            self.wfile.flush()
            time.sleep(0.2)

    def trick_slow(self, _):
        self.answer_slowly(PAGE, lambda: time.sleep(0.01))

    def trick_chunked(self, end):
        self.send_response(200)
        self.send_header("Transfer-Encoding", "chunked")
        self.end_headers()
        for at in range(0, len(PAGE), 100):
            piece = PAGE[at:at + 100]
            self.wfile.write(b"%x\r\n%s\r\n" % (len(piece), piece))
        if end == "cut":
            self.close_connection = True
        else:
            self.wfile.write(b"0\r\n\r\n")

    def trick_silent(self, _):
        self.wait_for_the_other_side()

    def trick_headers(self, _):
        self.wfile.write(b"HTTP/1.1 200 OK\r\n")
        while True:
            self.wfile.write(b"X-More: of the same\r\n" * 1000)


class ProxyHandler(http.server.BaseHTTPRequestHandler):
    """A company's proxy: it asks for an account, by Basic or Digest, and connects to this machine only."""

    protocol_version = "HTTP/1.1"
    account = ("j doe", "p@ss:/wörd#")

    def log_message(self, *_):
        pass

    def do_CONNECT(self):
        shown = self.headers.get("Proxy-Authorization", "-")
        self.server.site.note(f"CONNECT {shown.split()[0]}")
        if not (self.is_basic(shown) if self.server.scheme == "Basic" else self.is_digest(shown)):
            return self.refuse()
        self.send_response(200)
        self.end_headers()
        self.close_connection = True
        with socket.create_connection(("127.0.0.1", int(self.path.rpartition(":")[2]))) as other:
            self.join(other)

    def is_basic(self, shown):
        return shown == "Basic " + base64.b64encode(":".join(self.account).encode()).decode()

    def is_digest(self, shown):
        given = dict(re.findall(r'(\w+)="?([^",]*)"?', shown))
        md5 = lambda text: hashlib.md5(text.encode()).hexdigest()
        secret, wanted = md5(f"{self.account[0]}:korvalin:{self.account[1]}"), md5(f"CONNECT:{self.path}")
        return shown.startswith("Digest ") and given.get("nonce") == "once" and \
            given.get("response") == md5(f"{secret}:once:{wanted}")

    def refuse(self):
        self.send_response(407)
        extra = ', nonce="once"' if self.server.scheme == "Digest" else ""
        self.send_header("Proxy-Authenticate", f'{self.server.scheme} realm="korvalin"{extra}')
        self.send_header("Content-Length", "0")
        self.end_headers()

    def join(self, other):
        ends = {self.connection: other, other: self.connection}
        while True:
            for end in select.select(list(ends), [], [])[0]:
                data = end.recv(65536)
                if not data:
                    return
                ends[end].sendall(data)


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, *_):
        pass  # a handshake that the other side refused


class Site:
    """Serves a folder on http, and on https when certificates are asked for."""

    def __init__(self, folder, certificates=False):
        self.folder, self.requests, self.given_up = pathlib.Path(folder), [], []
        self.slow, self.go_on = set(), threading.Event()  # what comes slowly, until the end
        self.note = self.requests.append
        self.servers = [self.listen(None)]
        if certificates:
            self.servers += [self.listen(self.certificate(name, host)) for name, host in
                             (("ca", "IP:127.0.0.1"), ("wrong", "DNS:elsewhere.example"))]
            self.servers += [self.listen(None, ProxyHandler, scheme) for scheme in ("Basic", "Digest")]
        self.ports = [server.server_address[1] for server in self.servers]

    def certificate(self, name, host):
        """A certificate that vouches for itself; what trusts "ca" trusts both."""
        pem = self.folder / f"{name}.pem"
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes",
                        "-subj", f"/CN=Korvalin test {name}", "-addext", f"subjectAltName={host}", "-days", "2", "-keyout",
                        self.folder / f"{name}.key", "-out", pem], check=True, capture_output=True)
        with open(self.folder / "ca.pem", "a") as trusted:
            if name != "ca":
                trusted.write(pem.read_text())
        return name

    def listen(self, certificate, handler=Handler, scheme=None):
        server = Server(("127.0.0.1", 0), handler)
        server.site, server.scheme = self, scheme
        if certificate:
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(self.folder / f"{certificate}.pem", self.folder / f"{certificate}.key")
            server.socket = context.wrap_socket(server.socket, server_side=True)
        threading.Thread(target=server.serve_forever, kwargs={"poll_interval": 0.02}, daemon=True).start()
        return server

    def close(self):
        self.go_on.set()
        for server in self.servers:
            server.shutdown()
            server.server_close()


if __name__ == "__main__":
    site = Site(sys.argv[1], "certificates" in sys.argv)
    site.note = lambda path: print(path, flush=True)
    print(*site.ports, flush=True)
    sys.stdin.read()
