"""The list of rejections counts for nothing unless it is checked both ways."""

import unittest

import Rejections

_LIST = """
[[rejection]]
client = "reader"
model = "sample"
message = "too long"
documents = ["a.xsd", "b.xsd", "b.xsd"]
reason = "because"
"""


class RejectionsTest(unittest.TestCase):

    def differences(self, findings, client="reader", model="sample"):
        return Rejections.differences(Rejections.parse(_LIST), client, model, findings)

    def testFindingsThatAreAllListedAreNoDifference(self):
        findings = [("b.xsd", "too long"), ("a.xsd", "too long"), ("b.xsd", "too long")]
        self.assertEqual(self.differences(findings), [])

    def testFindingThatIsNotListedIsADifference(self):
        findings = [("a.xsd", "too long"), ("b.xsd", "too long"), ("b.xsd", "too long"),
                    ("b.xsd", "too short")]
        self.assertEqual(self.differences(findings),
                         ["not in Rejections.toml: reader: b.xsd: too short"])

    def testListedRejectionThatNoLongerOccursIsADifference(self):
        self.assertEqual(self.differences([("b.xsd", "too long"), ("b.xsd", "too long")]),
                         ["no longer so: reader: a.xsd: too long"])

    def testSameMessageOnceTooOftenAndOnceTooSeldomAreDifferences(self):
        self.assertEqual(
            self.differences([("a.xsd", "too long"), ("a.xsd", "too long"), ("b.xsd", "too long")]),
            ["not in Rejections.toml: reader: a.xsd: too long",
             "no longer so: reader: b.xsd: too long"])

    def testEntriesForOtherClientsAndModelsDoNotCount(self):
        self.assertEqual(self.differences([], client="other"), [])
        self.assertEqual(self.differences([], model="dmtf"), [])

    def testEntryWithoutReasonIsRefused(self):
        with self.assertRaisesRegex(ValueError, "not the fields"):
            Rejections.parse(_LIST.replace('reason = "because"', ""))

    def testEntryWithoutDocumentsIsRefused(self):
        with self.assertRaisesRegex(ValueError, "an entry without documents"):
            Rejections.parse(_LIST.replace('"a.xsd", "b.xsd", "b.xsd"', ""))

    def testListIsReadable(self):
        clients = {entry["client"] for entry in Rejections.read()}
        self.assertLessEqual(clients, {"libxml2 schema", "libxml2 WSDL", "Xerces-C", "gSOAP", "zeep"})
