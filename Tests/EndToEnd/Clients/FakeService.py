"""A service with one response to every request, which keeps what it was asked."""

import http.server
import os
import re
import threading

from lxml import etree

_DIRECTORY = os.path.join(os.path.dirname(os.path.abspath(__file__)), "Messages")
_IGNORED = re.compile(r"^uuid:[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}$")


def readMessage(name):
    with open(os.path.join(_DIRECTORY, name), "rb") as file:
        return file.read()


class FakeService:
    """Use as a context. Once it is left, contentTypes and requests hold what came."""

    def __init__(self, response):
        self.contentTypes = []
        self.requests = []
        service = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_POST(self):
                service.contentTypes.append(self.headers["Content-Type"])
                service.requests.append(self.rfile.read(int(self.headers["Content-Length"])))
                self.send_response(200)
                self.send_header("Content-Type", "application/soap+xml; charset=utf-8")
                self.send_header("Content-Length", str(len(response)))
                self.end_headers()
                self.wfile.write(response)

            def log_message(self, *_):
                pass

        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.address = f"http://127.0.0.1:{self._server.server_address[1]}/wsman"

    def __enter__(self):
        self._thread = threading.Thread(target=self._server.serve_forever)
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._server.shutdown()
        self._thread.join()
        self._server.server_close()

    def outlines(self):
        """The requests as outlines; the service's own address is the one that messages show."""
        return [outline(request.replace(self.address.encode(), b"http://service.example/wsman"))
                for request in self.requests]


def outline(message):
    """A message as lines: each element with its namespace, attributes in the order of their names,
    and text. Prefixes, blanks between elements and the digits of a UUID do not count."""
    parser = etree.XMLParser(remove_blank_text=True, remove_comments=True)
    lines = []

    def add(element, depth):
        texts = [element.text or ""] + [child.tail or "" for child in element]
        content = "".join(texts).strip()
        content = "uuid:" if _IGNORED.match(content) else content
        attributes = "".join(f" {name}={value!r}" for name, value in sorted(element.attrib.items()))
        lines.append(f"{'  ' * depth}{element.tag}{attributes}: {content}".rstrip(": "))
        for child in element:
            add(child, depth + 1)

    add(etree.fromstring(message, parser), 0)
    return "\n".join(lines)
