"""A server of the page and of ranges of the recordings that it shows, for this computer alone.

It listens on the loopback address. Whoever asks must know a secret, which is part of the address,
must call the server by its own name, and must not be a page of another origin; there is nothing to
be had but the page and ranges of the files that it was started with.
"""
from __future__ import annotations

import os
import re
import secrets
from collections.abc import Sequence
from http import HTTPStatus
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path

LOOPBACK = "127.0.0.1"
LARGEST_RANGE = 64 << 20    # [bytes]
HEADERS = {
    "Cache-Control": "no-store",
    "Content-Security-Policy": "frame-ancestors 'none'",
    "Cross-Origin-Opener-Policy": "same-origin",
    "Cross-Origin-Resource-Policy": "same-origin",
    "Referrer-Policy": "no-referrer",
    "X-Content-Type-Options": "nosniff",
}
RANGE = re.compile(r"bytes=(\d{1,18})-(\d{1,18})")


class Refused(Exception):
    """A request that gets nothing but a status."""

    def __init__(self, status: HTTPStatus):
        self.status = status


def _range(text: str | None, size: int) -> tuple[int, int]:
    """First byte and number of bytes of a range in a file of that size."""
    match = RANGE.fullmatch(text or "")
    if match is None:
        raise Refused(HTTPStatus.BAD_REQUEST)
    first, last = int(match[1]), min(int(match[2]), size - 1)
    if first >= size or last < first:
        raise Refused(HTTPStatus.REQUESTED_RANGE_NOT_SATISFIABLE)
    return first, min(last - first + 1, LARGEST_RANGE)


def _read(path: Path, first: int, count: int) -> bytes:
    with path.open("rb") as stream:
        stream.seek(first)
        return stream.read(count)


class Server(ThreadingHTTPServer):
    """The page under `address`, and the files under their numbers below it."""

    daemon_threads = True

    def __init__(self, page: str, files: Sequence[Path]):
        super().__init__((LOOPBACK, 0), Handler)
        self.page = page.encode()
        self.files = files
        self.secret = secrets.token_urlsafe(24)
        self.origin = f"http://{LOOPBACK}:{self.server_address[1]}"

    @property
    def address(self) -> str:
        """Where a browser finds the page."""
        return f"{self.origin}/{self.secret}/"


class Handler(BaseHTTPRequestHandler):
    """Answers GET and HEAD."""

    protocol_version = "HTTP/1.1"
    timeout = 60
    server: Server

    def do_GET(self) -> None:
        """The page, or a range of a file."""
        self._answer(whole=True)

    def do_HEAD(self) -> None:
        """The size of a file."""
        self._answer(whole=False)

    def _answer(self, whole: bool) -> None:
        try:
            name = self._asked()
            if name == "":
                self._send(HTTPStatus.OK, self.server.page if whole else b"",
                           "text/html; charset=utf-8", len(self.server.page))
                return
            path = self._file(name)
            size = path.stat().st_size
            if not whole:
                self._send(HTTPStatus.OK, b"", "application/octet-stream", size)
                return
            first, count = _range(self.headers["Range"], size)
            content = _read(path, first, count)
            self._send(HTTPStatus.PARTIAL_CONTENT, content, "application/octet-stream",
                       len(content), f"bytes {first}-{first + len(content) - 1}/{size}")
        except Refused as refused:
            self._send(refused.status, b"", "text/plain", 0)
        except OSError:     # the file is gone, or not readable
            self._send(HTTPStatus.NOT_FOUND, b"", "text/plain", 0)

    def _asked(self) -> str:
        """What is asked for behind the secret, if it may be."""
        own = self.headers["Host"] == self.server.origin.removeprefix("http://")
        origin = self.headers["Origin"] in (None, self.server.origin)
        site = self.headers["Sec-Fetch-Site"] in (None, "none", "same-origin")
        root, _, rest = self.path.removeprefix("/").partition("/")
        known = secrets.compare_digest(root.encode(), self.server.secret.encode())
        if not (own and origin and site and known):
            raise Refused(HTTPStatus.FORBIDDEN)
        return rest

    def _file(self, name: str) -> Path:
        if not re.fullmatch(r"\d{1,6}", name, re.ASCII) or int(name) >= len(self.server.files):
            raise Refused(HTTPStatus.NOT_FOUND)
        return self.server.files[int(name)]

    def _send(self, status: HTTPStatus, content: bytes, kind: str, length: int,
              content_range: str | None = None) -> None:
        try:
            self.send_response(status)
            for name, value in HEADERS.items():
                self.send_header(name, value)
            self.send_header("Content-Type", kind)
            self.send_header("Content-Length", str(length))
            if content_range is not None:
                self.send_header("Content-Range", content_range)
            self.end_headers()
            self.wfile.write(content)
        except ConnectionError:     # the page was closed meanwhile
            self.close_connection = True

    def version_string(self) -> str:
        """Nothing that tells what this is."""
        return "corvantis"

    def log_message(self, *_: object) -> None:
        """Nothing: the address has a secret."""


def is_readable_file(path: Path) -> bool:
    """Whether it is a file of this user's, and no folder, pipe or device."""
    return path.is_file() and os.access(path, os.R_OK)
