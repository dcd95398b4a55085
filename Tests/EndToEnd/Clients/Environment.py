"""Where the tests find what they need. CMake sets all of it; a test run by hand needs it as well."""

import os
import unittest

REPOSITORY = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../.."))
TESK_PROGRAM = os.environ["TESK_PROGRAM"]
XERCES_PROGRAM = os.environ["XERCES_PROGRAM"]
# Every model has a directory here.
WORK_DIRECTORY = os.environ["CLIENTS_WORK_DIRECTORY"]

# Directories that may be missing: what needs them is skipped then.
CIM_SCHEMA = os.environ.get("CIM_SCHEMA_DIR")
CIM_SERVER = os.environ.get("CIM_SERVER_DIR")
STANDARD_SCHEMAS = os.environ.get("STANDARD_SCHEMAS_DIR", "")
CATALOG = os.path.join(STANDARD_SCHEMAS, "catalog.xml")

# For lxml, which reads it when it first looks for a file. What is not in the catalog is asked of a
# proxy that is not there, so that no test depends on the network.
os.environ["XML_CATALOG_FILES"] = CATALOG
os.environ["http_proxy"] = os.environ["https_proxy"] = "http://127.0.0.1:9"


def needStandardSchemas():
    """Skips the test where there are no copies of the schemas that the documents import."""
    if not STANDARD_SCHEMAS:
        raise unittest.SkipTest("STANDARD_SCHEMAS_DIR is not set")
