#!/usr/bin/env python3
"""The verdicts of the win32 reference-tester runner on reports in the testers'
own formats: what counts as a failing result group, which failures the
baseline excuses, and which input lines lose their error-exit flag."""
import os
import sys
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tools"))
import reference_testers as rt  # noqa: E402

SGV_PASS = " All tests for SGV drivers  passed the threshold (  1092 tests run)"
SGV_FAIL = " SGV drivers:   28 out of  1092 tests failed to pass the threshold"
CST_PASS = " All tests for CST routines passed the threshold (  4440 tests run)"
CST_FAIL = " CST:    1 out of  4440 tests failed to pass the threshold"
SEV2_PASS = " All tests for SEV drivers  passed the threshold (   436 tests run)"
SEV2_FAIL = " SEV drivers:    3 out of   436 tests failed to pass the threshold"
EIG = "\n".join([" Tests of the Nonsymmetric Eigenvalue Problem Driver",
                 " All tests for SEV drivers  passed the threshold (  1092 tests run)",
                 SGV_PASS, CST_PASS, SEV2_PASS, " End of tests", ""])


def report(text, status=0, path="x.in"):
    return rt.summarize(status, text, path)


class Verdicts(unittest.TestCase):
    def test_lapack_groups_against_the_baseline(self):
        base = report(EIG.replace(CST_PASS, CST_FAIL))
        self.assertEqual([g[0] for g in base["groups"]], ["SEV", "SGV", "CST", "SEV"])
        mine = report(EIG.replace(CST_PASS, CST_FAIL).replace(SGV_PASS, SGV_FAIL))
        # SGV fails only here; CST fails in both and is excused.
        self.assertEqual(rt.compare(base, mine), [SGV_FAIL.strip()])
        # The second SEV summary is its own group: failing there is not
        # excused by the first one passing.
        self.assertEqual(rt.compare(report(EIG), report(EIG.replace(SEV2_PASS, SEV2_FAIL))),
                         [SEV2_FAIL.strip()])

    def test_failures_by_rounding_alone_are_excused(self):
        head = " Routines pass computational tests if test ratio is less than   20.00\n"
        shs = " SHS:    {} out of  1764 tests failed to pass the threshold\n"
        one = " Matrix order=   16, type=11, seed=3436, 404,2879,3877, result  11 is   {}\n"
        lin = " M=   50, type  8, test(  3) =   {}\n"
        base = report(head + " All tests for SHS routines passed the threshold (  1764 tests run)\n")
        self.assertEqual(rt.compare(base, report(head + one.format("20.32") + shs.format(1))), [])
        self.assertEqual(rt.compare(base, report(head + lin.format("20.5") + shs.format(1))), [])
        # Far over the threshold, one ratio too many, or ratios not listed.
        for text in (one.format("22.50") + shs.format(1),
                     one.format("20.32") + one.format("1.0E+07") + shs.format(2),
                     one.format("20.32") + shs.format(2)):
            self.assertEqual(len(rt.compare(base, report(head + text))), 1, text)
        # Ratios before an earlier summary belong to it.
        text = one.format("20.32") + shs.format(1) + shs.format(1)
        self.assertEqual(len(rt.compare(base, report(head + text))), 1)

    def test_a_run_cut_short_fails(self):
        base = report(EIG)
        crashed = report(EIG.split(CST_PASS)[0], status=3)
        problems = rt.compare(base, crashed)
        self.assertIn("exited with status 3", problems)
        self.assertIn("did not reach the end of its tests", problems)
        self.assertTrue(any("result groups, the baseline has" in p for p in problems))

    def test_new_error_lines_fail_known_ones_do_not(self):
        line = " SGEEV returned INFO=     3."
        base = report(EIG + line + "\n")
        self.assertEqual(rt.compare(base, report(EIG + line + "\n")), [])
        self.assertEqual(rt.compare(base, report(EIG + line + "\n" + line + "\n")), [line.strip()])

    def test_blas_report_formats(self):
        level1 = (" Test of subprogram number  1             SDOT  \n ----- PASS -----\n"
                  " Test of subprogram number  2            SAXPY  \n"
                  "      FAIL\n Test of subprogram number  3             SROTG \n")
        groups, _ = rt.groups_of(level1)
        self.assertEqual(groups, [["SDOT", True], ["SAXPY", False], ["SROTG", False]])
        level3 = (" SGEMM  PASSED THE COMPUTATIONAL TESTS (  1 CALLS)\n"
                  " ******* SSYMM  FAILED ON CALL NUMBER:\n"
                  " STRMM  COMPLETED THE COMPUTATIONAL TESTS (  9 CALLS)\n"
                  " ******* BUT WITH MAXIMUM TEST RATIO 99.0 - SUSPECT *******\n END OF TESTS\n")
        groups, _ = rt.groups_of(level3)
        self.assertEqual([g[:2] for g in groups],
                         [["SGEMM", True], ["SSYMM", False], ["STRMM", False]])


class ErrorExitFlags(unittest.TestCase):
    def test_each_form_of_the_flag(self):
        text = ("'SBLAT2.SUMM'      NAME OF SUMMARY OUTPUT FILE\n"
                "T        LOGICAL FLAG, T TO TEST ERROR EXITS.\n"
                "T                      Put T to test the error exits\n"
                "SEV:  Data file for testing Nonsymmetric Eigenvalue Driver\n"
                "20.0                   Threshold value\n"
                "T\n"
                "T                      Put T to test the LAPACK routines\n")
        out, n = rt.without_error_exits(text)
        self.assertEqual(n, 3)
        self.assertEqual(out.splitlines(), [
            "'SBLAT2.SUMM'      NAME OF SUMMARY OUTPUT FILE",
            "F        LOGICAL FLAG, T TO TEST ERROR EXITS.",
            "F                      Put T to test the error exits",
            "SEV:  Data file for testing Nonsymmetric Eigenvalue Driver",
            "20.0                   Threshold value",
            "F",
            "T                      Put T to test the LAPACK routines"])


if __name__ == "__main__":
    unittest.main()
