"""The two models whose documents the clients read, each exported into a directory of its own."""

import os
import shutil
import unittest

import Environment
import Guide

# The block of the guide that exports each model.
EXPORTS = {"sample": "export", "dmtf": "export-dmtf"}


class Model:
    """The exported documents of a model, in the layout that the guide's commands expect."""

    def __init__(self, name):
        self.name = name
        self.directory = os.path.join(Environment.WORK_DIRECTORY, name)

    @staticmethod
    def ofThisRun():
        """The exported model that ctest has named; skips the test where it has no data."""
        Environment.needStandardSchemas()
        model = Model(os.environ["CLIENTS_MODEL"])
        model.needMof()
        return model

    def needMof(self):
        if self.name == "dmtf" and not Environment.CIM_SCHEMA:
            raise unittest.SkipTest("CIM_SCHEMA_DIR is not set")

    def export(self):
        """Writes all documents anew; gives what tesk printed."""
        shutil.rmtree(self.directory, ignore_errors=True)
        os.makedirs(self.directory)
        for name, target in (("schemas", Environment.STANDARD_SCHEMAS),
                             ("cim_schema", Environment.CIM_SCHEMA),
                             ("Scripts", os.path.join(Environment.REPOSITORY, "Scripts"))):
            if target:
                os.symlink(os.path.abspath(target), os.path.join(self.directory, name))
        commands = Guide.Guide.read().text("sh", EXPORTS[self.name])
        status, output = Guide.runCommands(commands, self.directory)
        if status != 0:
            raise AssertionError(f"the export ended with {status}:\n{output}")
        return output

    def copyTo(self, directory):
        """Lays the directory out as the model's own, with documents that may be changed."""
        shutil.copytree(self.path("documents"), os.path.join(directory, "documents"))
        for name in ("schemas", "Scripts"):
            os.symlink(self.path(name), os.path.join(directory, name))

    def documents(self, suffix):
        """The documents with the suffix, relative to the model's directory, such as
        documents/root/cimv2/CIM_Component.xsd; at least one."""
        found = []
        for directory, _, files in os.walk(os.path.join(self.directory, "documents")):
            found += [os.path.relpath(os.path.join(directory, file), self.directory)
                      for file in files if file.endswith(suffix)]
        if not found:
            raise AssertionError(f"no {suffix} documents in {self.directory}; was the export run?")
        return sorted(found)

    def path(self, document):
        return os.path.join(self.directory, document)
