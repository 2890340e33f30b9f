#!/usr/bin/env python3
"""A web server on loopback that plays the maker's site, and misbehaves where it is asked to.

Started by itself it serves a folder, prints its ports (http, https, https with another host's certificate) on one line and
then every request; it ends when its input does. `folder`/ca.pem is what its certificates are trusted by.
"""

import gzip
import http.server
import pathlib
import ssl
import subprocess
import sys
import threading
import time
import urllib.parse

PAGE = b"<p>All is well.</p>" * 20


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        self.server.site.note(self.path)
        parts = urllib.parse.urlsplit(self.path)
        name = parts.path.strip("/").split("/")
        trick = getattr(self, "trick_" + name[0], None)
        try:
            if trick:
                trick(*name[1:], **dict(urllib.parse.parse_qsl(parts.query)))
            else:
                self.serve_file(parts.path)
        except (BrokenPipeError, ConnectionResetError, ssl.SSLError):
            self.server.site.given_up.append(self.path)  # the other side has had enough

    def log_message(self, *_):
        pass

    def answer(self, body, code=200, length=None, **headers):
        self.send_response(code)
        if length != "none":
            self.send_header("Content-Length", str(len(body) if length is None else length))
        for key, value in headers.items():
            self.send_header(key.replace("_", "-"), value)
        self.end_headers()
        self.wfile.write(body)
        self.wfile.flush()

    def hang_up(self):
        self.close_connection = True

    def wait_for_the_other_side(self):
        """Silence, until it closes the connection."""
        self.connection.settimeout(60)
        try:
            self.connection.recv(1)
        except OSError:
            pass
        self.server.site.given_up.append(self.path)
        self.hang_up()

    def serve_file(self, path):
        site = self.server.site
        file = site.folder / path.strip("/")
        if path in site.slow:
            self.send_response(200)
            body = file.read_bytes()
            self.send_header("Content-Length", str(len(body)))
            self.end_headers()
            for at in range(0, len(body), len(body) // 20 + 1):
                self.wfile.write(body[at:at + len(body) // 20 + 1])
                self.wfile.flush()
                site.go_on.wait(0.2)
        elif file.is_file():
            self.answer(file.read_bytes())
        else:
            self.answer(b"<h1>Nothing here</h1>", 404)

    def trick_page(self):
        self.answer(PAGE)

    def trick_echo(self):
        self.answer("\n".join(self.headers.get(name, "") for name in ("User-Agent", "Authorization")).encode())

    def trick_slow(self):
        self.send_response(200)
        self.send_header("Content-Length", str(len(PAGE)))
        self.end_headers()
        for at in range(0, len(PAGE), 20):
            self.wfile.write(PAGE[at:at + 20])
            self.wfile.flush()
            time.sleep(0.01)

    def trick_silent(self):
        self.wait_for_the_other_side()

    def trick_stall(self, *_):
        self.answer(PAGE, length=100_000)
        self.wait_for_the_other_side()

    def trick_early(self):
        self.answer(PAGE, length=100_000)
        self.hang_up()

    def trick_more(self):
        self.answer(PAGE + b"and more", length=len(PAGE))
        self.hang_up()

    def trick_endless(self):
        self.answer(PAGE, length="none")
        self.hang_up()

    def trick_empty(self):
        self.answer(b"")

    def trick_words(self, before="0"):
        self.answer(b"x" * int(before) + b"404 not found" + b"x" * 2000)

    def trick_status(self, code):
        self.answer(PAGE, int(code))

    def trick_away(self, to):
        self.answer(b"", 302, Location=to)

    def trick_loop(self):
        self.answer(b"", 302, Location="/loop")

    def trick_hops(self, count):
        self.answer(b"", 302, Location=f"/hops/{int(count) - 1}" if int(count) > 1 else "/page")

    def trick_chunked(self, end="whole"):
        self.send_response(200)
        self.send_header("Transfer-Encoding", "chunked")
        self.end_headers()
        for at in range(0, len(PAGE), 100):
            piece = PAGE[at:at + 100]
            self.wfile.write(b"%x\r\n%s\r\n" % (len(piece), piece))
        if end == "whole":
            self.wfile.write(b"0\r\n\r\n")
        else:
            self.hang_up()

    def trick_gzip(self):
        self.answer(gzip.compress(PAGE), Content_Encoding="gzip")

    def trick_bomb(self, megabytes):
        self.answer(gzip.compress(b"<" * int(megabytes) * 1_000_000), Content_Encoding="gzip")

    def trick_headers(self):
        self.wfile.write(b"HTTP/1.1 200 OK\r\n")
        while True:
            self.wfile.write(b"X-More: of the same\r\n" * 1000)

    def trick_long(self, megabytes):
        self.answer(b"y" * int(megabytes) * 1_000_000)

    def trick_huge(self):
        self.answer(PAGE, length=10_000_000_000)
        self.wait_for_the_other_side()


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

    def listen(self, certificate):
        server = Server(("127.0.0.1", 0), Handler)
        server.site = self
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
