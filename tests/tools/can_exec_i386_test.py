#!/usr/bin/env python3
"""The decision the test and demo scripts take before the win32 run: can this
machine execute a 32-bit x86 program? Stand-ins play the machines that cannot."""
import os
import shutil
import stat
import subprocess
import sys
import tempfile
import unittest
from importlib.machinery import SourceFileLoader

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
TOOL = os.path.join(ROOT, "tools", "can-exec-i386")
probe = SourceFileLoader("can_exec_i386", TOOL).load_module()
EM_AARCH64 = 183


def decide(*args, env=None):
    full = dict(os.environ)
    full.pop("ORB_I386_PROBE", None)
    full.update(env or {})
    return subprocess.run([sys.executable, TOOL, *args], env=full, capture_output=True).returncode


class StandIns(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.mkdtemp(dir=os.path.join(ROOT, "build"))
        self.addCleanup(shutil.rmtree, self.dir)

    def program(self, name, content):
        path = os.path.join(self.dir, name)
        with open(path, "wb") as f:
            f.write(content)
        os.chmod(path, stat.S_IRWXU)
        return path

    def test_a_program_the_kernel_refuses_means_cannot(self):
        # The probe itself, built for another processor: exec fails with
        # "Exec format error", exactly as 32-bit programs do in such sandboxes.
        foreign = self.program("foreign", probe.probe_image(EM_AARCH64))
        refused = subprocess.run(["/bin/sh", "-c", foreign], capture_output=True, text=True)
        self.assertIn("Exec format error", refused.stderr)
        self.assertEqual(decide(foreign), 1)
        self.assertEqual(decide(env={"ORB_I386_PROBE": foreign}), 1)

    def test_a_probe_that_ran_means_can(self):
        ran = self.program("ran", b"#!/bin/sh\nexit 32\n")
        self.assertEqual(decide(ran), 0)
        self.assertEqual(decide(env={"ORB_I386_PROBE": ran}), 0)

    def test_a_probe_that_did_not_finish_its_work_means_cannot(self):
        # Started but killed, or a launcher that exits 0 without running it.
        killed = self.program("killed", b"#!/bin/sh\nkill -SEGV $$\n")
        self.assertEqual(decide(killed), 1)
        self.assertEqual(decide("/bin/true"), 1)
        self.assertEqual(decide(os.path.join(self.dir, "missing")), 1)


class BuiltInProbe(unittest.TestCase):
    def test_agrees_with_wines_own_32_bit_loader(self):
        # A broken probe image would silently skip every win32 test on machines
        # that can run them; the 32-bit wine loader is a second opinion.
        loader = "/usr/lib/wine/wine"
        if not os.path.exists(loader):
            self.skipTest("32-bit wine is not installed: " + loader)
        try:
            loader_runs = subprocess.run([loader, "--version"], capture_output=True).returncode == 0
        except OSError:
            loader_runs = False
        self.assertEqual(decide() == 0, loader_runs)


if __name__ == "__main__":
    unittest.main()
