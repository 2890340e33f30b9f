#!/usr/bin/env python3
"""A web server on loopback that plays the maker's site, and misbehaves where it is asked to.

Started by itself it serves a folder, prints its ports (http, https, https with another host's certificate, proxies) on one
line and then every request; it ends when its input does. `folder`/ca.pem is what its certificates are trusted by.
"""

import base64
import contextlib
import gzip
import hashlib
import http.server
import itertools
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


def slowly(body, wait):
    """Its pieces, with a wait behind each."""
    size = len(body) // 20 + 1
    for at in range(0, len(body), size):
        yield body[at:at + size]
        wait()


def chunks(end):
    """As a transfer of unknown length sends them; "cut" leaves out the last one."""
    for at in range(0, len(PAGE), 100):
        yield b"%x\r\n%s\r\n" % (len(PAGE[at:at + 100]), PAGE[at:at + 100])
    if end != "cut":
        yield b"0\r\n\r\n"


# What is answered to the first part of a path, with the second part or the parameter; a body may come in pieces.
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
    "slow": lambda _: {"body": slowly(PAGE, lambda: time.sleep(0.01)), "length": len(PAGE)},
    "trickle": lambda _: {"body": (time.sleep(0.2) or b"<p>" for _ in itertools.count()), "length": 100_000},
    "chunked": lambda end: {"body": chunks(end), "length": None, "end": end and "hang up", "Transfer-Encoding": "chunked"},
}


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        self.server.site.note(self.path)
        parts = urllib.parse.urlsplit(self.path)
        name, _, more = parts.path.strip("/").partition("/")
        # The other side may have had enough.
        with contextlib.suppress(BrokenPipeError, ConnectionResetError, ssl.SSLError):
            if name in ANSWERS:
                self.answer(**ANSWERS[name](more or parts.query.partition("=")[2]))
            else:
                getattr(self, "do_" + name, self.serve_file)(parts.path)

    def log_message(self, *_):
        pass

    def answer(self, body, code=200, length=-1, end=None, **headers):
        self.send_response(code)
        if length is not None:
            headers["Content-Length"] = str(len(body) if length < 0 else length)
        for key, value in headers.items():
            self.send_header(key, value)
        self.end_headers()
        for piece in [body] if isinstance(body, bytes) else body:
            self.wfile.write(piece)
            self.wfile.flush()
        if end == "silence":
            self.do_silent()
        self.close_connection = self.close_connection or bool(end)

    def do_silent(self, *_):
        """Silence, until the other side closes the connection."""
        self.connection.settimeout(60)
        with contextlib.suppress(OSError):
            self.connection.recv(1)
        self.close_connection = True

    def do_echo(self, _):
        self.answer("\n".join(self.headers.get(name, "") for name in ("User-Agent", "Authorization")).encode())

    def do_headers(self, _):
        self.wfile.write(b"HTTP/1.1 200 OK\r\n")
        while True:
            self.wfile.write(b"X-More: of the same\r\n" * 1000)

    def serve_file(self, path):
        site = self.server.site
        file = site.folder / path.strip("/")
        if not file.is_file():
            return self.answer(b"<h1>Nothing here</h1>", 404)
        body = file.read_bytes()
        self.answer(slowly(body, lambda: path in site.slow and site.go_on.wait(0.2)), length=len(body))


class ProxyHandler(http.server.BaseHTTPRequestHandler):
    """A company's proxy: it asks for an account, by Basic or Digest, and connects to this machine only."""

    protocol_version = "HTTP/1.1"
    account = "j doe", "p@ss:/wörd#"

    def log_message(self, *_):
        pass

    def do_CONNECT(self):
        shown, scheme = self.headers.get("Proxy-Authorization", "-"), self.server.scheme
        self.server.site.note(f"CONNECT {shown.split()[0]}")
        known = self.is_basic(shown) if scheme == "Basic" else self.is_digest(shown)
        self.send_response(200 if known else 407)
        if not known:
            extra = ', nonce="once"' if scheme == "Digest" else ""
            self.send_header("Proxy-Authenticate", f'{scheme} realm="korvalin"{extra}')
            self.send_header("Content-Length", "0")
        self.end_headers()
        if known:
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
        self.folder, self.requests = pathlib.Path(folder), []
        self.slow, self.go_on = set(), threading.Event()  # what comes slowly, until the end
        self.note = self.requests.append
        self.servers = [self.listen()]
        if certificates:
            self.servers += [self.listen(self.certificate(name, host)) for name, host in
                             (("ca", "IP:127.0.0.1"), ("wrong", "DNS:elsewhere.example"))]
            self.servers += [self.listen(None, ProxyHandler, scheme) for scheme in ("Basic", "Digest")]
        self.ports = [server.server_address[1] for server in self.servers]

    def certificate(self, name, host):
        """A certificate that vouches for itself; what trusts "ca" trusts both."""
        pem, key, trusted = (self.folder / file for file in (f"{name}.pem", f"{name}.key", "ca.pem"))
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes",
                        "-subj", f"/CN=Korvalin test {name}", "-addext", f"subjectAltName={host}", "-days", "2", "-keyout",
                        key, "-out", pem], check=True, capture_output=True)
        if pem != trusted:
            trusted.write_text(trusted.read_text() + pem.read_text())
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(pem, key)
        return context

    def listen(self, certificate=None, handler=Handler, scheme=None):
        server = Server(("127.0.0.1", 0), handler)
        server.site, server.scheme = self, scheme
        if certificate:
            server.socket = certificate.wrap_socket(server.socket, server_side=True)
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
