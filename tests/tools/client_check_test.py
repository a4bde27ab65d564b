#!/usr/bin/env python3
"""The client check's pytest runs: a test that kills its process or hangs is
reported as such, and the tests after it in the module still run."""
import os
import shutil
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tools"))
import client_check  # noqa: E402

MODULE = '''
import os, signal, time
def test_a(): pass
def test_crash(): os.kill(os.getpid(), signal.SIGSEGV)
def test_b(): pass
def test_hang(): time.sleep(600)
def test_fails(): assert False
def test_skips():
    import pytest
    pytest.skip("not here")
def test_c(): pass
'''


class Recovery(unittest.TestCase):
    def test_crash_and_hang_cost_one_test_each(self):
        work = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, work)
        with open(os.path.join(work, "test_module.py"), "w") as f:
            f.write(MODULE)
        env = client_check.flavour_env(None, None)
        outcomes, notes = client_check.run_suite(["test_module.py"], env, 3, work)
        self.assertEqual(outcomes, {
            "test_module.py::test_a": "passed",
            "test_module.py::test_crash": "crashed",
            "test_module.py::test_b": "passed",
            "test_module.py::test_hang": "hung",
            "test_module.py::test_fails": "failed",
            "test_module.py::test_skips": "skipped",
            "test_module.py::test_c": "passed",
        })
        self.assertEqual(notes, [])


if __name__ == "__main__":
    unittest.main()
