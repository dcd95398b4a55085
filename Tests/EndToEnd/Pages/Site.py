"""What the browser looks at: pages exported into a directory, or served by the real program."""

import base64
import os
import re
import shutil
import subprocess
import tempfile
import urllib.parse
import urllib.request

TESK_PROGRAM = os.environ["TESK_PROGRAM"]
_MODELS = os.environ["MODELS_DIRECTORY"]
_QUALIFIERS = os.path.join(_MODELS, "qualifiers.mof")


def _run(command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)


class Export:
    """A model on a disk. Remove it with close()."""

    def __init__(self, mof=None, nameSpace="root/test", arguments=()):
        """The classes of a text, or those that the arguments name; without any the sample model."""
        self.directory = tempfile.mkdtemp()
        if mof is not None:
            model = os.path.join(self.directory, "model.mof")
            with open(model, "w", encoding="utf-8") as file:
                file.write(f'#pragma include ("{_QUALIFIERS}")\n{mof}')
            arguments = [f"--namespace={nameSpace}={model}", f"--include-path={_MODELS}", *arguments]
        _run([TESK_PROGRAM, "export", "--output", self.path("site"), *arguments])

    def close(self):
        shutil.rmtree(self.directory)

    def path(self, name):
        return os.path.join(self.directory, name)

    def address(self, page="index.html", fragment=""):
        return "file://" + urllib.parse.quote(self.path("site/" + page)) + fragment

    def change(self, page, old, new):
        """Replaces a text of a page."""
        with open(self.path("site/" + page), encoding="utf-8") as file:
            text = file.read()
        if text.count(old) != 1:
            raise AssertionError(f"{old!r} is {text.count(old)} times in {page}")
        with open(self.path("site/" + page), "w", encoding="utf-8") as file:
            file.write(text.replace(old, new))


class Service:
    """The sample model, served. End it with close()."""

    def __init__(self):
        self._process = subprocess.Popen([TESK_PROGRAM, "serve", "--listen", "127.0.0.1:0"],
                                         stdout=subprocess.PIPE, text=True)
        text = ""
        # The temporary password is in a file, since nobody looks at this standard output.
        pattern = re.compile(r'--user "\$\(cat (.+)\)" http://([^/]+)/')
        while (match := pattern.search(text)) is None:
            line = self._process.stdout.readline()
            if line == "":
                raise AssertionError("the service did not start: " + text)
            text += line
        passwordFile, self.host = match.groups()
        with open(passwordFile, encoding="utf-8") as file:
            self.credentials = file.read().strip()
        self._top = f"http://{self.credentials}@{self.host}"

    def close(self):
        self._process.terminate()
        if self._process.wait() != 0:
            raise AssertionError("the service ended with an error")
        self._process.stdout.close()

    def address(self, path):
        return self._top + path

    def get(self, path):
        """The body of a response, as a program gets it."""
        token = base64.b64encode(self.credentials.encode()).decode()
        request = urllib.request.Request(f"http://{self.host}{path}", headers={"Authorization": "Basic " + token})
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        with opener.open(request, timeout=60) as response:
            return response.read()
