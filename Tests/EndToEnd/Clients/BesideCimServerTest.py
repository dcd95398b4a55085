"""What Docs/beside-a-cim-server.md says works: with its files, a CIM server, tesk and a proxy are one
service, and clients that are made from the documents read what the server has."""

import contextlib
import os
import re
import shlex
import tempfile
import unittest
import urllib.request

import CimServer
import Environment
import Guide

# The ports of the page, and whose they are.
_PORTS = {"5985": "proxy", "5988": "server", "8080": "tesk"}
# The classes of the page and of the server.
_PREFIX = ("ACME", "PG")


class BesideCimServerTest(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        CimServer.needCimServer()
        Environment.needStandardSchemas()
        cls.guide = Guide.Guide.read("beside-a-cim-server.md")
        cls.ports = {port: str(CimServer.freePort()) for port in _PORTS}
        cls.directory = cls.enterClassContext(tempfile.TemporaryDirectory())
        for name, target in (("schemas", Environment.STANDARD_SCHEMAS),
                             ("Scripts", os.path.join(Environment.REPOSITORY, "Scripts"))):
            os.symlink(os.path.abspath(target), os.path.join(cls.directory, name))
        for name, language, block in (("tesk.toml", "toml", "settings"), ("read.py", "python", "zeep-read"),
                                      ("haproxy.cfg", "haproxy", "haproxy"),
                                      ("nginx.conf", "nginx", "nginx"),
                                      ("processes.cpp", "cpp", "gsoap-processes")):
            cls.write(name, cls.adapted(language, block))
        cls.write("cim-password", CimServer.PASSWORD + "\n", 0o600)
        cls.write(".netrc", f"machine 127.0.0.1 login {CimServer.USER} password {CimServer.PASSWORD}\n",
                  0o600)
        cls.enterClassContext(CimServer.cimServer(int(cls.ports["5988"]), cls.directory))
        command = shlex.split(cls.guide.text("sh", "serve"))
        command[0] = Environment.TESK_PROGRAM
        cls.enterClassContext(CimServer.running(command, int(cls.ports["8080"]), cls.directory, "tesk.log"))

    @classmethod
    def adapted(cls, language, block):
        """A block of the page, with the ports, the user and the classes of this run."""
        text = cls.guide.text(language, block)
        text = re.sub(r"\b(?:" + "|".join(_PORTS) + r")\b", lambda match: cls.ports[match.group()], text)
        return text.replace(*_PREFIX).replace("monitor", CimServer.USER)

    @classmethod
    def write(cls, name, text, mode=0o644):
        path = os.path.join(cls.directory, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        os.chmod(path, mode)

    @contextlib.contextmanager
    def proxy(self, name):
        command = {"haproxy": ["haproxy", "-db", "-f", "haproxy.cfg"],
                   "nginx": ["nginx", "-e", "stderr", "-p", self.directory, "-c", "nginx.conf",
                             "-g", f"daemon off; pid {self.directory}/nginx.pid;"]}[name]
        with CimServer.running(command, int(self.ports["5985"]), self.directory, name + ".log"):
            yield

    def run_(self, commands):
        return Guide.runCommands(commands, self.directory, HOME=self.directory, http_proxy="")

    def expectSuccess(self, commands):
        status, output = self.run_(commands)
        self.assertEqual(status, 0, output)
        return output

    def testEveryBlockIsUsed(self):
        self.assertEqual(set(self.guide.names("sh")),
                         {"serve", "zeep-read", "gsoap-generate", "gsoap-processes"})

    def testDocumentsNameTheAddressOfTheProxy(self):
        for name in ("haproxy", "nginx"):
            with self.subTest(name), self.proxy(name):
                address = f"127.0.0.1:{self.ports['5985']}"
                opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
                with opener.open(f"http://{address}/root/cimv2/PG_OperatingSystem.wsdl") as response:
                    self.assertIn(f'<soap:address location="http://{address}/wsman"/>',
                                  response.read().decode())

    def testZeepReadsValidInstancesAsValuesOfPython(self):
        for name in ("haproxy", "nginx"):
            with self.subTest(name), self.proxy(name):
                output = self.expectSuccess(self.adapted("sh", "zeep-read"))
                self.expectInstances(output)

    def expectInstances(self, output):
        system = os.uname()
        for line in ("PG_ComputerSystem: 1 valid", "PG_OperatingSystem: 1 valid",
                     r"PG_UnixProcess: [1-9]\d+ valid", "  PowerManagementSupported: False",
                     rf"  Version: '{re.escape(system.release)}'", r"  NumberOfProcesses: [1-9]\d+",
                     r"  LocalDateTime: datetime\.datetime\(20\d\d, .*\)", r"  Handle: '\d+'",
                     r"  Parameters: \['.*'\]"):
            self.assertRegex(output, re.compile(f"^{line}$", re.MULTILINE))
        # What the page shows of it.
        for line in self.adapted("text", "zeep-read").splitlines():
            if ":" in line:
                self.assertIn(f"{line.split(':')[0]}: ", output)

    def testInstanceThatIsNotValidIsRefused(self):
        program = self.adapted("python", "zeep-read")
        self.assertEqual(program.count("self.wrap(value)"), 1)
        self.write("unwrapped.py", program.replace("self.wrap(value)", "pass"))
        with self.proxy("haproxy"):
            status, output = self.run_(self.adapted("sh", "zeep-read").replace("read.py", "unwrapped.py"))
        self.assertEqual(status, 1)
        self.assertRegex(output, r"DocumentInvalid: Element '\{.*PG_OperatingSystem\}LastBootUpTime'")

    def testGsoapPullsAndGetsTypedInstances(self):
        with self.proxy("haproxy"):
            self.expectSuccess(self.adapted("sh", "gsoap-generate"))
            self.expectProcesses(self.expectSuccess(self.adapted("sh", "gsoap-processes")))
        with self.proxy("nginx"):
            self.expectProcesses(self.expectSuccess(self.adapted("sh", "gsoap-processes")))

    def expectProcesses(self, output):
        pattern = re.compile(r"(\d+) processes in (\d+) responses\nprocess (\d+): (.*), priority \d+\n")
        self.assertRegex(output, pattern)
        processes, responses, handle, name = pattern.match(output).groups()
        self.assertGreater(int(processes), 10)
        self.assertGreaterEqual(int(responses), int(processes) / 10)
        with open(f"/proc/{handle}/comm", encoding="utf-8") as file:
            self.assertEqual(name, file.read().strip())
        self.assertRegex(self.guide.text("text", "gsoap-processes"), pattern)
