#!/usr/bin/env python3
"""tools/run-reference-lapack.sh: its verdict on reports of every kind the
reference test programs write, the error-exit flags it switches off, and that a
wrong BLAS routine in front of Debian's reference LAPACK fails the run.
Stand-in libraries and a stand-in program are compiled from a few lines of C."""
import os
import re
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
RUNNER = os.path.join(ROOT, "tools", "run-reference-lapack.sh")
LAPACK_DIR = "/usr/lib/x86_64-linux-gnu/lapack"
CC = os.environ.get("CC", "cc")

SSCAL = """void sscal_(const int *n, const float *a, float *x, const int *inc) {
  for (int i = 0; i < *n; ++i) x[i * *inc] *= *a%s;
}
"""
# Binds sscal_ from the library in front, copies its input to $SEEN, prints
# the report in $REPORT and exits with $STATUS.
PROGRAM = r"""#include <stdio.h>
#include <stdlib.h>
void sscal_(const int *, const float *, float *, const int *);
int main(void) {
  int n = 1, inc = 1, c;
  float a = 2, x = 1;
  sscal_(&n, &a, &x, &inc);
  FILE *seen = fopen(getenv("SEEN"), "w"), *report = fopen(getenv("REPORT"), "r");
  while ((c = getchar()) != EOF) fputc(c, seen);
  while ((c = fgetc(report)) != EOF) putchar(c);
  return atoi(getenv("STATUS"));
}
"""

PASSING = """ Tests of the REAL LAPACK routines

 All tests for SGE routines passed the threshold (   3653 tests run)

 All tests for SGE drivers  passed the threshold (   5748 tests run)

 All tests for SEQ routines passed the threshold

 End of tests
 Total time used =         1.74 seconds
"""
END = " End of tests\n"


class Runner(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp()
        for name, source in (("good", SSCAL % ""), ("bad", SSCAL % " * 1.001f")):
            cls.build(source, f"lib{name}.so", "-shared", "-fPIC")
        cls.build(PROGRAM, "program", "-L" + cls.dir, "-Wl,-rpath," + cls.dir, "-lgood")

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.dir)

    @classmethod
    def build(cls, source, name, *flags):
        path = os.path.join(cls.dir, name + ".c")
        with open(path, "w") as f:
            f.write(source)
        subprocess.run([CC, "-o", os.path.join(cls.dir, name), path, *flags], check=True)

    def path(self, name):
        return os.path.join(self.dir, name)

    def write(self, name, text):
        with open(self.path(name), "w") as f:
            f.write(text)
        return self.path(name)

    def run_runner(self, report, status=0, input_text="no flags here\n", lib="libgood.so"):
        env = dict(os.environ, REPORT=self.write("report", report), STATUS=str(status),
                   SEEN=self.path("seen"))
        env.pop("PRELOAD_EXTRA", None)
        return subprocess.run([RUNNER, self.path(lib), self.path("program"),
                               self.write("input", input_text)],
                              env=env, capture_output=True, text=True)

    def assertVerdict(self, report, passed, status=0):
        r = self.run_runner(report, status)
        self.assertEqual(r.returncode, 0 if passed else 1, r.stdout + r.stderr)
        return r.stdout

    def test_a_clean_report_passes_and_counts_its_tests(self):
        out = self.assertVerdict(PASSING, True)
        self.assertIn("PASSED: 9401 tests run", out)
        self.assertIn("from ORB: sscal_", out)
        self.assertVerdict(" All tests for SST drivers  passed the threshold (  13464 tests run)\n"
                           + END, True)
        self.assertVerdict(" total number of examples tested        =   13\n"
                           " number of examples where info is not 0 =    0\n" + END, True)

    def test_every_kind_of_failure_fails(self):
        failures = [
            " SGE:    12 out of   3653 tests failed to pass the threshold\n",
            "            3 error messages recorded\n",
            " *** SGETRF returned with INFO =    2 instead of   0\n",
            " SCHKST: SSYTRD(U) returned INFO=     1.\n",
            " Error in STRSYL: RMAX =   0.100E+03\n",
            " *** SGEEV failed the tests of the error exits ***\n",
            " Invalid input value: NB=  -1; must be >=   1\n",
            " number of examples where info is not 0 =    2\n",
            "ORB ERROR: Parameter 4 was incorrect on entry to SGEMM \n",
        ]
        for line in failures:
            with self.subTest(line=line):
                out = self.assertVerdict(PASSING.replace(END, line + END), False)
                self.assertIn("FAIL: " + line.rstrip("\n"), out)

    def test_an_abnormal_end_fails(self):
        self.assertVerdict(PASSING, False, status=2)
        self.assertVerdict(PASSING.replace(END, ""), False)
        self.assertVerdict(END, False)  # no test ran

    def test_error_exit_flags_are_switched_off(self):
        # The usual flag line, a .TRUE. flag and the bare T after a threshold.
        text = ("20.0    Threshold value\n"
                "T       Put T to test the LAPACK routines\n"
                "T       Put T to test the error exits\n"
                ".TRUE.  Put T to test the error exits\n"
                "20.0    Threshold for test ratios\n"
                "T\n"
                "T\n")
        r = self.run_runner(PASSING, input_text=text)
        with open(self.path("seen")) as f:
            seen = f.read().splitlines()
        self.assertEqual(seen[1:], ["T       Put T to test the LAPACK routines",
                                    "F       Put T to test the error exits",
                                    "F  Put T to test the error exits",
                                    "20.0    Threshold for test ratios", "F", "T"])
        self.assertIn("3 error-exit flag(s) switched off", r.stdout)

    @unittest.skipUnless(os.path.exists(os.path.join(LAPACK_DIR, "xlintsts")),
                         "Debian's liblapack-test is not installed")
    def test_a_wrong_blas_routine_fails_the_reference_lapack_tests(self):
        # The general-matrix tests only, orders up to 10: sgetrf's column
        # scaling goes through sscal_.
        with open(os.path.join(LAPACK_DIR, "stest.in")) as f:
            lines = f.read().splitlines()
        lines[1:5] = ["4  Number of values of M", "0 1 5 10  Values of M",
                      "4  Number of values of N", "0 1 5 10  Values of N"]
        text = "\n".join(lines[:16] + [l for l in lines[16:] if l.startswith("SGE")]) + "\n"
        program = os.path.join(LAPACK_DIR, "xlintsts")
        for lib, passed in (("libgood.so", True), ("libbad.so", False)):
            r = subprocess.run([RUNNER, self.path(lib), program, self.write("sge.in", text)],
                               capture_output=True, text=True)
            self.assertEqual(r.returncode, 0 if passed else 1, r.stdout)
            self.assertIn("from ORB: sscal_", r.stdout)
            if not passed:
                self.assertTrue(re.search(r"FAIL: +SGE: +\d+ out of", r.stdout), r.stdout)


if __name__ == "__main__":
    unittest.main()
