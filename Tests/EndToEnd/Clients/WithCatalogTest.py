"""Scripts/with-catalog: its responses, messages and exit status."""

import os
import signal
import subprocess
import sys
import tempfile
import unittest

import Environment

_PROGRAM = os.path.join(Environment.REPOSITORY, "Scripts", "with-catalog")
_CATALOG = """<catalog xmlns="urn:oasis:names:tc:entity:xmlns:xml:catalog">
  <uri name="http://schemas.example/a.xsd" uri="files/a.xml"/>
</catalog>
"""
_FETCH = """
import sys, urllib.error, urllib.request
try:
    with urllib.request.urlopen(sys.argv[1]) as response:
        print(response.status, response.headers["Content-Type"], response.read().decode())
except urllib.error.HTTPError as error:
    print(error.code)
except urllib.error.URLError as error:
    print(error.reason)
"""


class WithCatalogTest(unittest.TestCase):

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = directory.name
        self.write("catalog.xml", _CATALOG)
        os.mkdir(os.path.join(self.directory, "files"))
        self.write("files/a.xml", "<a>ä</a>")

    def write(self, name, text):
        with open(os.path.join(self.directory, name), "w", encoding="utf-8") as file:
            file.write(text)

    def runProgram(self, *arguments):
        result = subprocess.run([_PROGRAM, *arguments], cwd=self.directory, capture_output=True, text=True,
                                check=False)
        return result.returncode, result.stdout, result.stderr

    def fetch(self, address):
        return self.runProgram("catalog.xml", sys.executable, "-c", _FETCH, address)

    def testAddressOfTheCatalogIsAnsweredFromItsFile(self):
        self.assertEqual(self.fetch("http://schemas.example/a.xsd"),
                         (0, "200 text/xml <a>ä</a>\n", ""))

    def testAnyOtherAddressIsNotFoundAndNamed(self):
        self.assertEqual(
            self.fetch("http://schemas.example/b.xsd"),
            (0, "404\n", "with-catalog: not in catalog.xml: http://schemas.example/b.xsd\n"))

    def testEncryptedAddressIsRefusedAndNamed(self):
        self.assertEqual(
            self.fetch("https://schemas.example/a.xsd"),
            (0, "Tunnel connection failed: 501 Not Implemented\n",
             "with-catalog: no https: schemas.example:443\n"))

    def testCommandIsToldTheProxyInBothVariables(self):
        status, output, _ = self.runProgram("catalog.xml", "sh", "-c", 'echo "$http_proxy"; echo "$CATALOG_PROXY"')
        variable, proxy = output.splitlines()
        self.assertEqual((status, variable), (0, "http://" + proxy))
        self.assertRegex(proxy, r"^127\.0\.0\.1:[0-9]+$")

    def testEndsAsTheCommandDoes(self):
        self.assertEqual(self.runProgram("catalog.xml", "sh", "-c", "exit 7"), (7, "", ""))
        self.assertEqual(self.runProgram("catalog.xml", "sh", "-c", "kill -TERM $$"), (128 + signal.SIGTERM, "", ""))

    def testInterruptLeavesTheEndToTheCommand(self):
        command = "trap 'echo interrupted; exit 5' INT; echo ready; while :; do read -r _; done"
        with subprocess.Popen([_PROGRAM, "catalog.xml", "sh", "-c", command], cwd=self.directory, text=True,
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              process_group=0) as process:
            self.assertEqual(process.stdout.readline(), "ready\n")
            os.killpg(process.pid, signal.SIGINT)
            self.assertEqual(process.communicate(), ("interrupted\n", ""))
        self.assertEqual(process.returncode, 5)

    def testCommandThatIsNotThereIsNamed(self):
        self.assertEqual(self.runProgram("catalog.xml", "no-such-command"),
                         (127, "", "with-catalog: no-such-command: No such file or directory\n"))

    def testCatalogThatCannotBeReadIsNamed(self):
        self.assertEqual(self.runProgram("none.xml", "true"),
                         (1, "", "with-catalog: none.xml: No such file or directory\n"))
        self.write("catalog.xml", "<catalog>")
        self.assertEqual(self.runProgram("catalog.xml", "true"),
                         (1, "", "with-catalog: catalog.xml: no element found: line 1, column 9\n"))
        self.write("catalog.xml", _CATALOG.replace('uri="files/a.xml"', ""))
        self.assertEqual(self.runProgram("catalog.xml", "true"),
                         (1, "", "with-catalog: catalog.xml: a uri entry without uri\n"))

    def testTooFewArgumentsShowTheUsage(self):
        status, output, errors = self.runProgram("catalog.xml")
        self.assertEqual((status, output, errors.splitlines()[0]),
                         (2, "", "Usage: Scripts/with-catalog CATALOG COMMAND [ARGUMENT...]"))
        self.assertEqual(self.runProgram("--help"), (0, errors, ""))
