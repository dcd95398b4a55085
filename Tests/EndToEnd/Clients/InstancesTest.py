"""Instances written by hand are valid by the schemas of their classes, and damaged ones are not."""

import os
import re
import tempfile
import tomllib
import unittest

import Environment
import Guide
import Model

_DIRECTORY = os.path.join(os.path.dirname(os.path.abspath(__file__)), "Instances")
_CLASS_NAMESPACES = "http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/"
_FAULT = re.compile(r"^instance\.xml:\d+: element \S+: Schemas validity error : (.*)$")


def readInstances():
    with open(os.path.join(_DIRECTORY, "Instances.toml"), "rb") as file:
        return tomllib.load(file)["instance"]


def readText(name):
    with open(os.path.join(_DIRECTORY, name), encoding="utf-8") as file:
        return file.read()


class InstancesTest(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.model = Model.Model.ofThisRun()
        cls.guide = Guide.Guide.read()

    def validate(self, text, className="root/cimv2/CIM_SystemDevice"):
        """Runs the guide's commands for an instance of the class; gives exit status and output."""
        commands = self.guide.text("sh", "instance")
        self.assertIn("root/cimv2/CIM_SystemDevice", commands)
        with tempfile.TemporaryDirectory(dir=Environment.WORK_DIRECTORY) as directory:
            for name in ("documents", "schemas"):
                os.symlink(self.model.path(name), os.path.join(directory, name))
            with open(os.path.join(directory, "instance.xml"), "w", encoding="utf-8") as file:
                file.write(text)
            return Guide.runCommands(commands.replace("root/cimv2/CIM_SystemDevice", className), directory)

    def testInstanceOfTheGuideIsValid(self):
        self.assertEqual(self.validate(self.guide.text("xml", "instance")),
                         (0, self.guide.text("output", "instance")))

    def testInstancesOfTenClassesAreValid(self):
        instances = readInstances()
        self.assertEqual(len({instance["class"] for instance in instances}), 10)
        self.assertEqual(sorted(instance["file"] for instance in instances),
                         sorted(name for name in os.listdir(_DIRECTORY) if name.endswith(".xml")))
        for instance in instances:
            with self.subTest(instance["file"]):
                self.assertEqual(self.validate(readText(instance["file"]), instance["class"]),
                                 (0, "instance.xml validates\n"))

    def testDamagedInstancesAreRefusedForTheirReasons(self):
        for instance in readInstances():
            text = readText(instance["file"])
            self.assertTrue(instance["damage"], instance["file"])
            for damage in instance["damage"]:
                with self.subTest(f"{instance['file']}: {damage['what']}"):
                    self.assertEqual(text.count(damage["replace"]), 1)
                    damaged = text.replace(damage["replace"], damage["by"])
                    status, output = self.validate(damaged, instance["class"])
                    self.assertEqual(self.messages(output, instance["class"]), damage["messages"])
                    # What xmllint ends with when a document is not valid.
                    self.assertEqual(status, 3)

    def messages(self, output, className):
        """What is said of the faults; nothing else may be said but the verdict."""
        *faults, verdict = output.splitlines()
        self.assertEqual(verdict, "instance.xml fails to validate")
        namespace = "{" + _CLASS_NAMESPACES + os.path.basename(className) + "}"
        return [_FAULT.match(line).group(1).replace(namespace, "p:") for line in faults]
