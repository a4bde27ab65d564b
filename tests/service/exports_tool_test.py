#!/usr/bin/env python3
"""The export lists generated from the real table for a made-up set of built
entries: aliases, callee-pops names and Fortran spellings come out right."""
import os
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
TOOL = os.path.join(ROOT, "tools", "exports.py")
TABLE = os.path.join(ROOT, "src", "service", "exports.tsv")

LINUX_BUILT = ["sgemm", "cdotc", "snrm2", "DGEMM", "DGEMV", "spotrf", "SetValToPtr_s", "XERBLA"]
WIN32_BUILT = ["_sgemm", "_cdotc", "_snrm2", "_DGEMM", "_DGEMV", "_spotrf", "_SetValToPtr_s@8",
               "_GetValFromPtrf_s@4", "_XERBLA"]


def generate(target, symbols):
    out = tempfile.mkdtemp()
    symfile = os.path.join(out, "symbols.txt")
    with open(symfile, "w") as f:
        f.write("\n".join(symbols))
    subprocess.run([sys.executable, TOOL, "generate", "--table", TABLE, "--target", target,
                    "--symbols", symfile, "--out", out], check=True)
    files = {}
    for name in ("orb.def", "orb.map", "orb_aliases.ld", "orb_fortran.c", "exported.txt"):
        with open(os.path.join(out, name)) as f:
            files[name] = f.read()
    files["exported"] = dict(line.split("\t") for line in files["exported.txt"].splitlines())
    return files


class Linux(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.f = generate("linux", LINUX_BUILT)

    def test_cross_precision_names_share_the_single_entry_without_fortran_spelling(self):
        ex = self.f["exported"]
        for name, entry in [("dgemm", "sgemm"), ("dnrm2", "snrm2"), ("SNRM2", "snrm2"),
                            ("dpotrf", "spotrf"), ("zpotrf", "spotrf")]:
            self.assertEqual(ex[name], entry)
            self.assertIn(f"{name} = {entry};", self.f["orb_aliases.ld"])
        for alias in ("dnrm2_", "zpotrf_", "SNRM2_"):
            self.assertNotIn(alias, ex)
        # dgemm_ and dpotrf_ exist only where their double entries are built.
        self.assertEqual(ex["dgemm_"], "DGEMM")
        self.assertIn("dgemm_ = DGEMM;", self.f["orb_aliases.ld"])
        self.assertNotIn("dpotrf_", ex)

    def test_upper_and_lower_twins_and_fortran_spellings(self):
        ex = self.f["exported"]
        self.assertEqual(ex["dgemv"], "DGEMV")
        self.assertEqual(ex["dgemv_"], "DGEMV")
        self.assertEqual(ex["sgemm_"], "sgemm")
        self.assertEqual(ex["xerbla_"], "XERBLA")
        self.assertNotIn("DGEMV_", ex)
        self.assertNotIn("sgemv", ex)  # not built

    def test_complex_functions_get_a_by_value_wrapper(self):
        c = self.f["orb_fortran.c"]
        self.assertIn("float _Complex cdotc_(const void *a0, const void *a1, const void *a2, "
                      "const void *a3, const void *a4)", c)
        self.assertIn("cdotc(&r, a0, a1, a2, a3, a4);", c)
        self.assertNotIn("cdotc_ =", self.f["orb_aliases.ld"])
        src = os.path.join(tempfile.mkdtemp(), "w.c")
        with open(src, "w") as f:
            f.write(c)
        subprocess.run(["cc", "-std=c11", "-Wall", "-Werror", "-c", src, "-o", src + ".o"],
                       check=True)

    def test_version_script_lists_exactly_the_exported_names(self):
        vmap = self.f["orb.map"]
        listed = {l.strip().rstrip(";") for l in vmap.splitlines() if l.startswith("    ")}
        self.assertEqual(listed, set(self.f["exported"]))
        self.assertIn("local: *;", vmap)

    def test_host_alias_shares_its_entry(self):
        self.assertEqual(self.f["exported"]["SetValIToPtr"], "SetValToPtr_s")


class Win32(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.f = generate("win32", WIN32_BUILT)

    def test_def_file(self):
        lines = [l.strip() for l in self.f["orb.def"].splitlines()]
        self.assertIn("LIBRARY orb.dll", lines)
        for line in ("sgemm", "dgemm = sgemm", "zpotrf = spotrf", "SNRM2 = snrm2", "DGEMM",
                     "dgemv = DGEMV", "SetValToPtr_s = SetValToPtr_s@8",
                     "SetValIToPtr = SetValToPtr_s@8", "GetValFromPtrf_s = GetValFromPtrf_s@4"):
            self.assertIn(line, lines)
        self.assertFalse(any(l.endswith("_") for l in lines[3:]), "no Fortran names in the DLL")
        self.assertNotIn("GetValFromPtr_s", " ".join(lines))  # its @8 symbol is not built


class Table(unittest.TestCase):
    def test_families_add_up(self):
        out = subprocess.run([sys.executable, TOOL, "header-names", "--table", TABLE, "--out",
                              os.path.join(tempfile.mkdtemp(), "h.c")], check=True)
        rows = [l.split("\t") for l in open(TABLE) if not l.startswith("#")][1:]
        self.assertEqual(len(rows), 398)
        self.assertEqual(len({r[1] for r in rows}), 368)
        fams = {}
        for r in rows:
            fams[r[5].strip()] = fams.get(r[5].strip(), 0) + 1
        self.assertEqual(fams, {"sci": 200, "upper": 34, "lowerd": 24, "solver": 26,
                                "tessera": 2, "threads": 7, "vml": 8, "host": 97})
        kinds = {}
        for r in rows:
            if r[0] == r[1]:
                kinds[r[2]] = kinds.get(r[2], 0) + 1
        self.assertEqual(kinds["checked"], 41)


class Kinds(unittest.TestCase):
    """An exported entry must go through the helper its table row names."""

    def kinds(self, source):
        src = tempfile.mkdtemp()
        with open(os.path.join(src, "entries.cpp"), "w") as f:
            f.write(source)
        listed = os.path.join(src, "exported.txt")
        with open(listed, "w") as f:
            f.write("spotrf\tspotrf\nsgemm\tsgemm\nXERBLA\tXERBLA\n")
        return subprocess.run([sys.executable, TOOL, "kinds", "--table", TABLE, "--expected",
                               listed, "--src", src], capture_output=True, text=True)

    GOOD = """
ORB_API void spotrf(const char *uplo, const int *n, float *a, const int *lda, int *info,
                    int uplo_len) {
  orb::entry::lapack(kSpotrf, NoWorkspace{}, potrf<float>, uplo, n, a, lda, info);
}
ORB_API void sgemm(const char *ta, const char *tb, const int *m, const int *n, const int *k,
                   const float *alpha, const float *a, const int *lda, const float *b,
                   const int *ldb, const float *beta, float *c, const int *ldc, int, int) {
  if (*m) { orb::entry::checked(kSgemm, gemm<float>, ta, tb, m, n, k, alpha, a, lda, b, ldb,
                                beta, c, ldc); }
}
ORB_API void XERBLA(const char *name, const int *info, int len) { orb::xerbla(name, info, len); }
"""

    def test_each_kind_through_its_helper(self):
        r = self.kinds(self.GOOD)
        self.assertEqual(r.returncode, 0, r.stdout)

    def test_a_lapack_entry_that_forwards_fails(self):
        bad = self.GOOD.replace("orb::entry::lapack(kSpotrf, NoWorkspace{}, potrf<float>,",
                                "potrf<float>(")
        r = self.kinds(bad)
        self.assertEqual(r.returncode, 1)
        self.assertIn("FAIL: spotrf: a lapack entry, but it calls the helpers of: none", r.stdout)

    def test_a_checked_entry_without_its_checker_fails(self):
        r = self.kinds(self.GOOD.replace("orb::entry::checked(kSgemm, ", "orb::entry::plain("))
        self.assertIn("FAIL: sgemm: a checked entry, but it calls the helpers of: plain", r.stdout)


if __name__ == "__main__":
    unittest.main()
