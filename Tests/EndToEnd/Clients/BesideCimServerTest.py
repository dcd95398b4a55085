"""What Docs/beside-a-cim-server.md says works: with its files and commands, a CIM server, tesk and a
proxy are one service, and clients that are made from the documents read what the server has."""

import os
import re
import shlex
import tempfile
import unittest

import CimServer
import Environment
import Guide

# The ports of the page: of the proxy, the CIM server, that with TLS, and tesk.
_PROXY, _SERVER, _SECURE_SERVER, _TESK = _PORTS = ("5985", "5988", "5989", "8080")
# What classes begin with on the page, and at the server.
_PREFIXES = ("ACME", "PG")
# The user of the page.
_USER = "monitor"


class Page:
    """The page, a directory with its files, and the CIM server, for all tests."""

    def __init__(self, directory):
        self.guide = Guide.Guide.read("beside-a-cim-server.md")
        self.directory = directory
        self.ports = {port: str(CimServer.freePort()) for port in _PORTS}
        for name, target in (("schemas", Environment.STANDARD_SCHEMAS),
                             ("Scripts", os.path.join(Environment.REPOSITORY, "Scripts"))):
            os.symlink(os.path.abspath(target), os.path.join(directory, name))
        for name, language, block in (("tesk.toml", "toml", "settings"), ("haproxy.cfg", "haproxy", "haproxy"),
                                      ("nginx.conf", "nginx", "nginx"), ("read.py", "python", "zeep-read"),
                                      ("processes.cpp", "cpp", "gsoap-processes")):
            self.write(name, self.text(language, block))
        self.write("cim-password", CimServer.PASSWORD + "\n", 0o600)
        self.write(".netrc", f"machine 127.0.0.1 login {CimServer.USER} password {CimServer.PASSWORD}\n",
                   0o600)

    def text(self, language, block):
        """A block of the page, with the ports, the user and the classes of this run."""
        text = re.sub(r"\b(?:" + "|".join(_PORTS) + r")\b", lambda match: self.ports[match.group()],
                      self.guide.text(language, block))
        return text.replace(*_PREFIXES).replace(_USER, CimServer.USER)

    def write(self, name, text, mode=0o644):
        path = os.path.join(self.directory, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        os.chmod(path, mode)

    def run(self, commands):
        """Gives exit status and all that the commands print."""
        return Guide.runCommands(commands, self.directory, HOME=self.directory, http_proxy="")

    def running(self, command, port, log):
        """A program that serves at that port of the page, as a context."""
        return CimServer.running(command, int(self.ports[port]), self.directory, log)

    def serving(self, block):
        """`tesk serve` as the page starts it."""
        command = shlex.split(self.text("sh", block).replace("\\\n", ""))
        return self.running([Environment.TESK_PROGRAM, *command[1:]], _TESK, block + ".log")


def setUpModule():
    global PAGE
    CimServer.needCimServer()
    Environment.needStandardSchemas()
    PAGE = Page(unittest.enterModuleContext(tempfile.TemporaryDirectory()))
    unittest.enterModuleContext(CimServer.cimServer(int(PAGE.ports[_SERVER]), PAGE.directory))


class Case(unittest.TestCase):

    def expectSuccess(self, commands):
        status, output = PAGE.run(commands)
        self.assertEqual(status, 0, output)
        return output


class PageTest(Case):

    def testEveryCommandIsRunBySomeTest(self):
        self.assertEqual(set(PAGE.guide.names("sh")),
                         {"users", "serve", "serve-options", "certificate", "zeep-read", "gsoap-generate",
                          "gsoap-processes"})

    def testServerProvesWhoItIs(self):
        self.expectSuccess(
            "openssl req -x509 -days 2 -subj /CN=localhost -addext subjectAltName=DNS:localhost -nodes"
            " -newkey ec -pkeyopt ec_paramgen_curve:P-256 -keyout key.pem -out authority.pem 2> /dev/null\n"
            "cat authority.pem key.pem > both.pem\n")
        PAGE.write("tls.cfg", f"""
defaults
    mode tcp
    timeout connect 60s
    timeout client 60s
    timeout server 60s
listen tls
    bind 127.0.0.1:{PAGE.ports[_SECURE_SERVER]} ssl crt both.pem
    server plain 127.0.0.1:{PAGE.ports[_SERVER]}
""")
        command = PAGE.text("sh", "certificate")
        self.assertEqual(command.count(" --server-cacert authority.pem"), 1)
        with PAGE.running(["haproxy", "-db", "-f", "tls.cfg"], _SECURE_SERVER, "tls.log"):
            self.assertRegex(self.expectSuccess(command), re.compile("^root/interop  .*$", re.MULTILINE))
            self.assertEqual(PAGE.run(command.replace(" --server-cacert authority.pem", "")),
                             (1, PAGE.text("text", "certificate")))


class BehindProxy:
    """What works behind any proxy. Which one it is, and how tesk is started, the classes below say."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        status, output = PAGE.run(PAGE.text("sh", "users"))
        if status != 0:
            raise AssertionError(output)
        cls.enterClassContext(PAGE.serving(cls.service))
        cls.enterClassContext(PAGE.running(cls.proxy, _PROXY, cls.__name__ + ".log"))

    def testDocumentsNameTheAddressOfTheProxy(self):
        address = f"http://127.0.0.1:{PAGE.ports[_PROXY]}"
        document = self.expectSuccess(
            f"curl --silent --fail --netrc {address}/root/cimv2/PG_OperatingSystem.wsdl")
        self.assertIn(f'<soap:address location="{address}/wsman"/>', document)

    def testZeepReadsValidInstancesAsValuesOfPython(self):
        output = self.expectSuccess(PAGE.text("sh", "zeep-read"))
        for line in ("PG_ComputerSystem: 1 valid", "PG_OperatingSystem: 1 valid",
                     r"PG_UnixProcess: [1-9]\d+ valid", "  PowerManagementSupported: False",
                     rf"  Version: '{re.escape(os.uname().release)}'", r"  NumberOfProcesses: [1-9]\d+",
                     r"  LocalDateTime: datetime\.datetime\(20\d\d, .*\)", r"  Handle: '\d+'",
                     r"  Parameters: \['.*'\]"):
            self.assertRegex(output, re.compile(f"^{line}$", re.MULTILINE))
        # What the page shows of it.
        for line in PAGE.text("text", "zeep-read").splitlines():
            self.assertIn(line.removesuffix("...").rstrip(), output)


class HaproxyTest(BehindProxy, Case):
    proxy = ["haproxy", "-db", "-f", "haproxy.cfg"]
    service = "serve"

    def testInstanceThatIsNotValidIsRefused(self):
        program = PAGE.text("python", "zeep-read")
        self.assertEqual(program.count("self.wrap(value)"), 1)
        PAGE.write("unwrapped.py", program.replace("self.wrap(value)", "pass"))
        status, output = PAGE.run(PAGE.text("sh", "zeep-read").replace("read.py", "unwrapped.py"))
        self.assertEqual(status, 1)
        self.assertRegex(output, r"DocumentInvalid: Element '\{.*PG_OperatingSystem\}LastBootUpTime'")

    def testGsoapPullsAndGetsTypedInstances(self):
        self.expectSuccess(PAGE.text("sh", "gsoap-generate"))
        output = self.expectSuccess(PAGE.text("sh", "gsoap-processes"))
        pattern = re.compile(r"(\d+) processes in (\d+) responses\nprocess (\d+): (.*), priority \d+\n")
        self.assertRegex(output, pattern)
        processes, responses, handle, name = pattern.fullmatch(output).groups()
        self.assertGreater(int(processes), 10)
        self.assertGreaterEqual(int(responses), int(processes) / 10)
        with open(f"/proc/{handle}/comm", encoding="utf-8") as file:
            self.assertEqual(name, file.read().rstrip("\n"))
        self.assertRegex(PAGE.guide.text("text", "gsoap-processes"), pattern)


class NginxTest(BehindProxy, Case):
    proxy = ["nginx", "-e", "stderr", "-p", ".", "-c", "nginx.conf", "-g", "daemon off; master_process off; pid nginx.pid;"]
    service = "serve-options"
