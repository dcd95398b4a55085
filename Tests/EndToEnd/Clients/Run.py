"""Runs the tests of the modules that are named. Ends with 0 when they pass, 1 when one fails and 77
when all of them were skipped, which ctest shows as such."""

import sys
import unittest

SKIPPED = 77


def main(modules):
    # No byte code beside the sources.
    sys.dont_write_bytecode = True
    suite = unittest.defaultTestLoader.loadTestsFromNames(modules)
    if suite.countTestCases() == 0:
        print("no tests in", *modules)
        return 1
    result = unittest.TextTestRunner(verbosity=2).run(suite)
    if not result.wasSuccessful():
        return 1
    # A class that is skipped as a whole is no test case, and none of its tests counts as run.
    skipped = sum(isinstance(test, unittest.TestCase) for test, _ in result.skipped)
    return SKIPPED if result.testsRun == skipped else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
