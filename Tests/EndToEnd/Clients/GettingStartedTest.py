"""The first steps that newcomers are shown lead where the page says: its commands are run in order."""

import os
import re
import shlex
import shutil
import subprocess
import tempfile
import unittest

import Environment
import Guide

# What installs, builds, or changes the shell of the reader.
_BY_HAND = {"run", "path"}
_IN_ORDER = ["classes", "check", "mistake", "passwd", "export"]
_SERVING = {"serve", "curl"}
_WITH_SCHEMAS = ["zeep", "gsoap", "gsoap-function"]
_ADDRESS = "127.0.0.1:5985"


def withoutTime(output):
    """The summary of a command without the time that it took."""
    return re.sub(r"\b[0-9.]+ s:", "TIME:", output)


class GettingStartedTest(unittest.TestCase):

    def setUp(self):
        self.guide = Guide.Guide.read("getting-started.md")
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.directory = temporary.name
        shutil.copytree(os.path.join(Environment.REPOSITORY, "Models"), os.path.join(self.directory, "Models"))
        for name, language, block in (("acme.mof", "mof", "acme"), ("tesk.toml", "toml", "settings")):
            with open(os.path.join(self.directory, name), "w", encoding="utf-8") as file:
                file.write(self.guide.text(language, block))

    def expected(self, name):
        return withoutTime(self.guide.text("output", name))

    def runBlock(self, name):
        status, output = Guide.runCommands(self.guide.text("sh", name), self.directory)
        # The mistake is there to be found.
        self.assertEqual((status, withoutTime(output)), (1 if name == "mistake" else 0, self.expected(name)))

    def testEveryCommandIsRunBySomeTest(self):
        self.assertEqual(set(self.guide.names("sh")),
                         _BY_HAND | set(_IN_ORDER) | _SERVING | set(_WITH_SCHEMAS))
        self.assertLessEqual(set(self.guide.names("output")), set(self.guide.names("sh")))

    def testCommandsInOrderPrintWhatThePageSays(self):
        for name in _IN_ORDER:
            with self.subTest(name):
                self.runBlock(name)

    def testServiceAnswersTheUserOfThePage(self):
        self.runBlock("passwd")
        command = shlex.split(self.guide.text("sh", "serve"))
        self.assertEqual(command[0], "tesk")
        service = subprocess.Popen([Environment.TESK_PROGRAM, *command[1:], "--listen", "127.0.0.1:0"],
                                   cwd=self.directory, text=True, stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL)
        with service:
            try:
                said = service.stdout.readline()
                address = re.search(r"http://(.*)\n", said).group(1)
                with open(os.path.join(Environment.REPOSITORY, "Docs", "getting-started.md"),
                          encoding="utf-8") as page:
                    self.assertIn(f"`{said.strip().replace(address, _ADDRESS)}`", page.read())
                commands = self.guide.text("sh", "curl")
                self.assertIn(_ADDRESS, commands)
                self.assertEqual(Guide.runCommands(commands.replace(_ADDRESS, address), self.directory,
                                                   http_proxy=""),
                                 (0, self.guide.text("output", "curl")))
            finally:
                service.terminate()
        self.assertEqual(service.returncode, 0)

    def testClientsAreMadeAsThePageSays(self):
        Environment.needStandardSchemas()
        for name in ("passwd", "export"):
            self.runBlock(name)
        outputs = {}
        for name in _WITH_SCHEMAS:
            # In the place of the network; wsdl2h has to be told.
            commands = self.guide.text("sh", name).replace("wsdl2h ", 'wsdl2h -r "$CATALOG_PROXY" ')
            script = os.path.join(Environment.REPOSITORY, "Scripts", "with-catalog")
            status, outputs[name] = Guide.runCommands(
                shlex.join([script, Environment.CATALOG, "bash", "-euo", "pipefail", "-c", commands]),
                self.directory)
            self.assertEqual(status, 0, outputs[name])
        for name in ("zeep", "gsoap-function"):
            self.assertEqual(outputs[name], self.guide.text("output", name))
