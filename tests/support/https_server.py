# SPDX-License-Identifier: MIT
"""https_server.py FOLDER: an HTTPS server on loopback, with a signer of its own whose certificate is FOLDER/signer.pem.

Prints its port, then a line per request: its path. Ends when its input ends. The certificate names 127.0.0.1 only.
"""
import http.server
import json
import os
import pathlib
import ssl
import subprocess
import sys
import threading
import urllib.parse

EXTENSION = "[v3]\nsubjectAltName=IP:127.0.0.1\nbasicConstraints=CA:FALSE\n"


def openssl(folder, *arguments):
    subprocess.run(["openssl", *arguments], cwd=folder, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def make_certificates(folder):
    new_key = ["-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes"]
    openssl(folder, "req", "-x509", *new_key, "-keyout", "signer.key", "-out", "signer.pem", "-days", "2",
            "-subj", "/CN=Signer of a test")
    openssl(folder, "req", *new_key, "-keyout", "server.key", "-out", "server.csr", "-subj", "/CN=127.0.0.1")
    (folder / "extensions").write_text(EXTENSION)
    openssl(folder, "x509", "-req", "-in", "server.csr", "-CA", "signer.pem", "-CAkey", "signer.key", "-CAcreateserial",
            "-out", "server.pem", "-days", "2", "-extfile", "extensions", "-extensions", "v3")


class Handler(http.server.BaseHTTPRequestHandler):
    def log_message(self, *_):
        pass

    def answer(self, status, body, **headers):
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name, value)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def do_GET(self):
        print(self.path)
        address = urllib.parse.urlsplit(self.path)
        number = int(address.query) if address.query.isdigit() else 0
        port = self.server.server_address[1]
        if address.path == "/lookup":
            identifier = urllib.parse.parse_qs(address.query).get("id", ["none"])[0]
            results = {"results": [{"version": "2.10.1", "releaseNotes": identifier}]}
            self.answer(200, json.dumps(results).encode())
        elif address.path == "/error":
            self.answer(500, b"gone wrong")
        elif address.path == "/big":
            self.answer(200, b"x" * number)
        elif address.path == "/hops":
            self.answer(302, b"", Location=f"/hops?{number - 1}" if number > 1 else "/big?3")
        elif address.path == "/plain":
            self.answer(302, b"", Location=f"http://127.0.0.1:{port}/big?3")
        elif address.path == "/silent":
            self.rfile.read(1)  # until the client goes
        elif address.path in ("/endless", "/headers"):
            self.wfile.write(b"HTTP/1.0 200 OK\r\n" + (b"\r\n" if address.path == "/endless" else b""))
            while True:
                self.wfile.write(b"X-Y: 1\r\n" * 8192)
        else:
            self.answer(404, b"")


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, *_):  # clients that go away are what the tests are about
        pass


def main():
    folder = pathlib.Path(sys.argv[1])
    make_certificates(folder)
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(folder / "server.pem", folder / "server.key")
    server = Server(("127.0.0.1", 0), Handler)
    server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
    print(server.server_address[1])
    threading.Thread(target=server.serve_forever, daemon=True).start()
    sys.stdin.read()
    os._exit(0)


main()
