"""Docs/clients.md and Docs/getting-started.md as the tests read them: their code blocks, by name, and
how they are run.

A block is fenced by three backticks, the language and the block's name. A block of the language
"output" follows the block of commands of the same name and says what those print.
"""

import os
import re
import subprocess

import Environment

_BLOCK = re.compile(r"^```([a-z+]+) ([a-z0-9-]+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
_FENCE = re.compile(r"^```", re.MULTILINE)


class Guide:
    """The blocks of a guide."""

    def __init__(self, text):
        self._blocks = {}
        for match in _BLOCK.finditer(text):
            language, name, content = match.groups()
            if (language, name) in self._blocks:
                raise ValueError(f"two blocks {language} {name}")
            self._blocks[language, name] = content
        if 2 * len(self._blocks) != len(_FENCE.findall(text)):
            raise ValueError("a block without language or name, which no test could run")

    @staticmethod
    def read(name="clients.md"):
        with open(os.path.join(Environment.REPOSITORY, "Docs", name), encoding="utf-8") as file:
            return Guide(file.read())

    def names(self, language):
        return [name for (ofLanguage, name) in self._blocks if ofLanguage == language]

    def text(self, language, name):
        return self._blocks[language, name]


def runCommands(commands, directory, **variables):
    """Runs commands of the guide in the directory; gives exit status and all that they print."""
    environment = dict(os.environ, **variables)
    # The commands have to say themselves what they need.
    environment.pop("XML_CATALOG_FILES")
    environment["PATH"] = os.path.dirname(Environment.TESK_PROGRAM) + os.pathsep + os.environ["PATH"]
    environment["LC_ALL"] = "C.UTF-8"
    result = subprocess.run(["bash", "-euo", "pipefail", "-c", commands], cwd=directory, env=environment,
                            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, check=False)
    return result.returncode, result.stdout.decode("utf-8", "replace")
