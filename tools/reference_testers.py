#!/usr/bin/env python3
"""The reference BLAS and LAPACK test programs, cross-built for 32-bit Windows
(tools/build-lapack-win32.sh), run against orb.dll under wine.

  reference_testers.py input IN OUT
      Copies a tester's input with its error-exit tests switched off (they test
      the program's own XERBLA, which a library's routines do not call). Prints
      how many flags it switched off. Used by the Linux runners too.
  reference_testers.py exits REPORT OUT
      Copies a report without the error-exit checks that the library's own
      argument check answered (see answered_error_exits). Used by the Linux
      runners too.
  reference_testers.py link --kit K --program P --dll D --implib L --table T
                            --objdump OD --nm NM --cc CC --fc FC --out EXE [--forward a_=name ...]
      Links tester P with every Fortran name whose routine the DLL exports
      forwarded to the DLL, so the reference LAPACK's own BLAS calls reach it
      too. The names come from the DLL's real export list and the export
      table's Fortran column; --forward replaces or adds one (the harness's
      self-test sends strsm_ to strmm).
  reference_testers.py baseline --kit K --program P --inputs I... --results R
      Runs the program linked with the reference libraries only and keeps its
      result groups in R/P.json.
  reference_testers.py run --program EXE --baseline-of P --inputs I... --results R
                           --paths default,0,... [--expect-failing GROUP]
      Runs EXE (the DLL flavour) once per processor path (ORB_DEBUG_CPU_TYPE)
      and reports every result group that fails there and passes in the
      baseline. With --expect-failing, succeeds only if GROUP is among them.

The programs run under tools/wine-run, each in a fresh folder, with the input
on standard input. A result group is one summary of the report: a level-1
BLAS subprogram, a level-2/3 routine ("SGEMM PASSED THE COMPUTATIONAL
TESTS"), or a LAPACK path ("SGV drivers: 28 out of 1092 tests failed").
"""
import argparse
import collections
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import types

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import exports  # noqa: E402

TOOLS = os.path.dirname(os.path.abspath(__file__))
WINE_RUN = os.path.join(TOOLS, "wine-run")


# ---------------------------------------------------------------------------
# Inputs
# ---------------------------------------------------------------------------
# BLAS level 2/3: "T        LOGICAL FLAG, T TO TEST ERROR EXITS."
# LAPACK: a T (or .TRUE.) at the start of a line that names the error exits,
# or, in the nonsymmetric driver inputs, a line holding only T right after the
# threshold.
_ERROR_EXITS = re.compile(r"^( *)(T|\.TRUE\.)(( .*)?[Ee][Rr][Rr][Oo][Rr] [Ee][Xx][Ii][Tt][Ss].*)$")
_LONE_FLAG = re.compile(r"^( *)(T|\.TRUE\.)( *)$")


def without_error_exits(text):
    out, n, prev = [], 0, ""
    for line in text.splitlines():
        m = _ERROR_EXITS.match(line)
        if not m and re.search("threshold", prev, re.I):
            m = _LONE_FLAG.match(line)
        if m:
            line = m.group(1) + "F" + m.group(3)
            n += 1
        out.append(line)
        prev = line
    return "\n".join(out) + "\n", n


# Some paths (the condition-estimation paths SEC and CEC) test their error
# exits whatever the input says. Their check expects the program's own XERBLA
# to be called; a library's routine reports through its own, so every case
# shows as "Illegal value of parameter number N not detected by NAME". The
# case is answered when the library's message names the same parameter of the
# same routine: both lines are set aside, and with them the path's summary of
# its error exits once every case of the report is answered. A case the
# library did not catch, or a library message no case explains, stays.
_ORB_CAUGHT = re.compile(r"ORB ERROR: Parameter\s+(\d+) was incorrect on entry to (\w+)")
_NOT_DETECTED = re.compile(r"Illegal value of parameter number\s+(\d+) not detected by (\w+)")
_EXITS_FAILED = re.compile(r"routines failed the tests of the error exits")


def answered_error_exits(report):
    """(report without the answered error-exit cases, number of cases answered)."""
    lines = report.splitlines()
    caught = collections.defaultdict(list)
    for i, line in enumerate(lines):
        m = _ORB_CAUGHT.search(line)
        if m:
            caught[(int(m.group(1)), m.group(2).upper())].append(i)
    drop, unanswered = set(), 0
    for i, line in enumerate(lines):
        m = _NOT_DETECTED.search(line)
        if not m:
            continue
        pending = caught.get((int(m.group(1)), m.group(2).upper()))
        if pending:
            drop.update((i, pending.pop(0)))
        else:
            unanswered += 1
    if drop and not unanswered:
        drop.update(i for i, line in enumerate(lines) if _EXITS_FAILED.search(line))
    kept = [line for i, line in enumerate(lines) if i not in drop]
    return "\n".join(kept) + "\n", sum(1 for i in drop if _NOT_DETECTED.search(lines[i]))


def cmd_exits(args):
    with open(args.report, errors="replace") as f:
        text, n = answered_error_exits(f.read())
    with open(args.output, "w") as f:
        f.write(text)
    print(n)
    return 0


def cmd_input(args):
    with open(args.input) as f:
        text, n = without_error_exits(f.read())
    with open(args.output, "w") as f:
        f.write(text)
    print(n)
    return 0


# ---------------------------------------------------------------------------
# Linking
# ---------------------------------------------------------------------------
def forwards(table, dll, objdump):
    """{Fortran name: (exported name, complex-result argument count or None)}."""
    rows = exports.read_table(table)
    live = exports.binary_exports(types.SimpleNamespace(target="win32", objdump=objdump,
                                                        binary=dll))
    out = {}
    for r in rows:
        fa = exports.fortran_alias(r)
        if fa and r.name in live:
            out[fa[0]] = (r.name, fa[1])
    return out


def defined(nm, archive):
    """C-level names (leading underscore dropped) an archive defines."""
    return {s[1:] for s in exports.defined_symbols(nm, archive) if s.startswith("_")}


def forward_source(fw):
    lines = ["/* Generated: Fortran names of the reference testers sent to orb.dll. */"]
    for alias, (name, nargs) in sorted(fw.items()):
        if nargs is None:
            # Same convention on both sides: a jump keeps the caller's frame.
            lines.append(f'__asm__(".globl _{alias}\\n_{alias}:\\n\\tjmp *__imp__{name}\\n");')
        else:
            # The DLL returns a complex result through a hidden first pointer,
            # gfortran expects it in registers.
            lines.append(exports.complex_result_wrapper(alias, name, nargs,
                                                        "__declspec(dllimport)"))
    return "\n".join(lines) + "\n"


def cmd_link(args):
    kit = args.kit
    fw = forwards(args.table, args.dll, args.objdump)
    for pair in args.forward or []:
        alias, name = pair.split("=")
        fw[alias] = (name, None)
    reference = set()
    for lib in ("blas", "lapack"):
        reference |= defined(args.nm, os.path.join(kit, "lib", f"lib{lib}.a"))
    objects = os.path.join(kit, "objects", args.program + ".a")
    own = defined(args.nm, objects)
    # Only names of the reference libraries, and none the program defines
    # itself (the testers bring their own XERBLA and ILAENV).
    fw = {a: v for a, v in fw.items() if a in reference and a not in own}
    with tempfile.TemporaryDirectory() as tmp:
        src = os.path.join(tmp, "forwards.c")
        obj = os.path.join(tmp, "forwards.o")
        with open(src, "w") as f:
            f.write(forward_source(fw))
        subprocess.run([args.cc, "-O2", "-msse2", "-mfpmath=sse", "-c", src, "-o", obj],
                       check=True)
        libs = [os.path.join(kit, "lib", f"lib{n}.a") for n in ("tmglib", "lapack", "blas")]
        # The same 32 MB stack as the baseline programs (tools/build-lapack-win32.sh).
        subprocess.run([args.fc, "-static", "-Wl,--stack,33554432", "-o", args.out,
                        "-Wl,--whole-archive", objects,
                        "-Wl,--no-whole-archive", obj, args.implib] + libs, check=True)
    with open(args.out + ".forwards", "w") as f:
        f.write("".join(f"{a} {v[0]}\n" for a, v in sorted(fw.items())))
    print(f"{os.path.basename(args.out)}: {len(fw)} names forwarded to the DLL")
    return 0


# ---------------------------------------------------------------------------
# Running and reading reports
# ---------------------------------------------------------------------------
_ANOMALY = re.compile(
    r"error messages? recorded|\*\*\*|[Ii]llegal|INFO|^ *Error in |[Ii]nvalid|[Uu]nrecognized"
    r"|not attempted|ORB ERROR|[Ff]ortran runtime error|info is not (0|zero)"
    r"|ILO or IHI (is )?wrong")


# A LAPACK path whose every failing test misses the threshold by less than this
# factor fails by rounding alone (a different but equally accurate order of
# operations in the BLAS), not by a fault: the testers' ratios are in units of
# the rounding error, and a wrong result gives ratios orders of magnitude over.
MARGINAL = 1.1


def groups_of(report):
    """([(group, passed[, note])] in report order, [anomalous lines]).

    A failing LAPACK path counts as passed, with a note, when the report lists
    the ratio of each of its failing tests and none exceeds MARGINAL times the
    threshold."""
    groups, anomalies, level1 = [], [], None
    threshold, ratios = None, []
    for line in report.splitlines():
        m = re.search(r"test ratio is less than\s+([0-9.]+)", line)
        if m:
            threshold = float(m.group(1))
        m = re.search(r"(?:result\s+\d+ is|test\(\s*\d+\)\s*=)\s*([0-9.]+(?:[EeDd][-+]?\d+)?)",
                      line)
        if m:
            ratios.append(float(m.group(1).replace("D", "E").replace("d", "e")))
        m = re.search(r"Test of subprogram number\s+\d+\s+(\w+)", line)
        if m:
            level1 = m.group(1)
            groups.append([level1, False])
            continue
        if level1 and "----- PASS -----" in line:
            groups[-1][1] = True
            level1 = None
            continue
        m = re.match(r"\s*(\w+)\s+PASSED THE COMPUTATIONAL TESTS", line)
        if m:
            groups.append([m.group(1), True])
            continue
        m = (re.match(r"\s*(\w+)\s+COMPLETED THE COMPUTATIONAL TESTS", line) or
             re.search(r"\*+\s+(\w+)\s+FAILED ON CALL NUMBER", line))
        if m:
            groups.append([m.group(1), False])
            continue
        m = re.search(r"All tests for (\w+)( \w+)? +passed the threshold", line)
        if m:
            groups.append([m.group(1), True])
            ratios = []
            continue
        m = re.match(r"\s*(\w+)( \w+)?:\s+(\d+) out of\s+\d+ tests failed", line)
        if m:
            marginal = (threshold is not None and len(ratios) == int(m.group(3)) and
                        all(r < MARGINAL * threshold for r in ratios))
            note = line.strip()
            if marginal:
                note += f" (every ratio below {MARGINAL} times the threshold: {max(ratios)})"
            groups.append([m.group(1), marginal, note])
            ratios = []
            continue
        if _ANOMALY.search(line) and "PASSED" not in line:
            anomalies.append(line.strip())
    return groups, anomalies


def run_one(exe, input_path, env_extra, keep):
    """Runs a tester on one input; returns (exit status, report text)."""
    with tempfile.TemporaryDirectory() as tmp:
        stdin = b""
        summary = None
        if input_path:
            with open(input_path) as f:
                text, _ = without_error_exits(f.read())
            stdin = text.encode()
            # BLAS level 2/3 testers write their report to the file named first.
            m = re.match(r"\s*'([^']*)'", text)
            summary = m.group(1) if m else None
        env = dict(os.environ, **env_extra)
        p = subprocess.run([WINE_RUN, exe], input=stdin, cwd=tmp, env=env,
                           stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        report = p.stdout.decode(errors="replace")
        if summary and os.path.exists(os.path.join(tmp, summary)):
            with open(os.path.join(tmp, summary), errors="replace") as f:
                report += f.read()
    with open(keep, "w") as f:
        f.write(report)
    return p.returncode, report


def ended(report, input_path):
    if input_path is None:
        return True
    return "END OF TESTS" in report or "End of tests" in report


def summarize(status, report, input_path):
    groups, anomalies = groups_of(answered_error_exits(report)[0])
    return {"status": status, "ended": ended(report, input_path), "groups": groups,
            "anomalies": anomalies}


def input_paths(args):
    return [os.path.join(args.kit, "input", i) for i in args.inputs] if args.inputs else [None]


def cmd_baseline(args):
    os.makedirs(args.results, exist_ok=True)
    exe = os.path.join(args.kit, "bin", args.program + ".exe")
    out = {}
    for path in input_paths(args):
        key = os.path.basename(path) if path else "-"
        keep = os.path.join(args.results, f"{args.program}.baseline.{key}.out")
        status, report = run_one(exe, path, {}, keep)
        s = summarize(status, report, path)
        out[key] = s
        bad = [g for g in s["groups"] if not g[1]]
        print(f"{args.program} < {key}: {len(s['groups'])} result groups, {len(bad)} failing"
              + "".join(f"\n    {g[2] if len(g) > 2 else g[0] + ' fails'}" for g in bad))
    with open(os.path.join(args.results, args.program + ".json"), "w") as f:
        json.dump(out, f)
    return 0


def compare(base, mine):
    """Lines describing what fails in mine and not in base."""
    problems = []
    if mine["status"] != 0 and base["status"] == 0:
        problems.append(f"exited with status {mine['status']}")
    if not mine["ended"] and base["ended"]:
        problems.append("did not reach the end of its tests")
    seen = collections.Counter()
    base_ok = {}
    count = collections.Counter()
    for g in base["groups"]:
        count[g[0]] += 1
        base_ok[(g[0], count[g[0]])] = g[1]
    for g in mine["groups"]:
        seen[g[0]] += 1
        k = (g[0], seen[g[0]])
        if not g[1] and base_ok.get(k, True):
            problems.append(g[2] if len(g) > 2 else f"{g[0]} fails")
    if len(mine["groups"]) < len(base["groups"]):
        problems.append(f"{len(mine['groups'])} result groups, the baseline has "
                        f"{len(base['groups'])}")
    known = collections.Counter(base["anomalies"])
    for a in mine["anomalies"]:
        if known[a] > 0:
            known[a] -= 1
        else:
            problems.append(a)
    return problems


def cmd_run(args):
    with open(os.path.join(args.results, args.baseline_of + ".json")) as f:
        baseline = json.load(f)
    name = os.path.splitext(os.path.basename(args.program))[0]
    failing = []
    for cpu in args.paths.split(","):
        env = {"OMP_WAIT_POLICY": "passive"}
        if cpu != "default":
            env["ORB_DEBUG_CPU_TYPE"] = cpu
        for path in input_paths(args):
            key = os.path.basename(path) if path else "-"
            keep = os.path.join(args.results, f"{name}.{cpu}.{key}.out")
            status, report = run_one(args.program, path, env, keep)
            mine = summarize(status, report, path)
            problems = compare(baseline[key], mine)
            where = f"path {cpu}, {name} < {key}"
            print(f"{where}: {len(mine['groups'])} result groups, "
                  f"{len(problems)} failing beyond the baseline")
            for p in problems[:20]:
                print(f"    FAIL: {p}")
            if problems:
                print(f"    report: {keep}")
            failing += problems
    if args.expect_failing:
        caught = any(re.match(rf"{args.expect_failing}\b", p) for p in failing)
        print(f"{args.expect_failing}: " + ("caught" if caught else "NOT caught"))
        return 0 if caught else 1
    print("PASSED" if not failing else f"FAILED: {len(failing)} result group(s)")
    return 1 if failing else 0


def main():
    ap = argparse.ArgumentParser(description=__doc__,
                                 formatter_class=argparse.RawDescriptionHelpFormatter)
    sub = ap.add_subparsers(dest="cmd", required=True)
    p = sub.add_parser("input")
    p.add_argument("input")
    p.add_argument("output")
    p = sub.add_parser("exits")
    p.add_argument("report")
    p.add_argument("output")
    p = sub.add_parser("link")
    for a in ("kit", "program", "dll", "implib", "table", "objdump", "nm", "cc", "fc", "out"):
        p.add_argument("--" + a, required=True)
    p.add_argument("--forward", action="append")
    p = sub.add_parser("baseline")
    for a in ("kit", "program", "results"):
        p.add_argument("--" + a, required=True)
    p.add_argument("--inputs", nargs="*")
    p = sub.add_parser("run")
    for a in ("kit", "program", "baseline-of", "results", "paths"):
        p.add_argument("--" + a, required=True)
    p.add_argument("--inputs", nargs="*")
    p.add_argument("--expect-failing")
    args = ap.parse_args()
    return {"input": cmd_input, "exits": cmd_exits, "link": cmd_link, "baseline": cmd_baseline,
            "run": cmd_run}[args.cmd](args)


if __name__ == "__main__":
    sys.exit(main())
