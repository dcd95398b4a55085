"""Exports a model for all tests that come after it."""

import os
import unittest

import Model


class ExportTest(unittest.TestCase):

    def testEveryClassGetsBothDocuments(self):
        model = Model.Model(os.environ["CLIENTS_MODEL"])
        model.needMof()
        print(model.export())
        wsdls = [document.removesuffix(".wsdl") for document in model.documents(".wsdl")]
        schemas = [document.removesuffix(".xsd") for document in model.documents(".xsd")]
        self.assertEqual(wsdls, schemas)
        self.assertEqual(len(wsdls), {"sample": 59, "dmtf": 1438}[model.name])
