"""A real client as a standing check: NumPy's and SciPy's own tests, run with
the reference BLAS and LAPACK and again with liborb.so preloaded in front of
them. Reports every test that passes with the reference and fails, errors,
crashes or hangs with ORB. Run by tools/client-check.sh (Debian's python3, not
a virtual environment's).

Each suite runs in pytest processes that record every test as it starts and
ends; a process that dies or stops making progress is replaced by one that
skips what is already known, so a crash costs one test and not the rest of
its module.
"""

import argparse
import concurrent.futures
import json
import os
import re
import subprocess
import sys
import tempfile
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
MULTIARCH = "/usr/lib/x86_64-linux-gnu"
REFERENCE_PATH = f"{MULTIARCH}/blas:{MULTIARCH}/lapack"
SITE = "/usr/lib/python3/dist-packages"

# (name, pytest arguments); the slowest first, so two workers finish together.
SUITES = [
    ("scipy.sparse.linalg", ["--pyargs", "scipy.sparse.linalg"]),
    ("scipy.linalg", ["--pyargs", "scipy.linalg"]),
    ("numpy.linalg", ["--pyargs", "numpy.linalg"]),
    ("numpy.core dot/matmul",
     [f"{SITE}/numpy/core/tests/test_multiarray.py", f"{SITE}/numpy/core/tests/test_numeric.py",
      "-k", "(dot or matmul or Dot or MatMul or inner or Inner) and not huge"]),
    ("scipy.optimize linprog", [f"{SITE}/scipy/optimize/tests/test_linprog.py",
                                "-k", "test_bug_6139"]),
]

PASSING = {"passed", "skipped", "xfailed", "xpassed"}


def flavour_env(orb, threads):
    env = dict(os.environ)
    env["LD_LIBRARY_PATH"] = REFERENCE_PATH
    env["PYTHONPATH"] = HERE
    env["PYTHONDONTWRITEBYTECODE"] = "1"
    env.pop("LD_PRELOAD", None)
    if orb:
        env["LD_PRELOAD"] = orb
        if threads:
            env["ORB_NUM_THREADS"] = str(threads)
    return env


def run_suite(args, env, hang_seconds, workdir):
    """Runs one suite to the end; returns ({test id: outcome}, notes)."""
    fd, log = tempfile.mkstemp(prefix="client-check-", suffix=".jsonl", dir=workdir)
    os.close(fd)
    skip_file = log + ".skip"
    outcomes, notes = {}, []
    for attempt in range(200):
        with open(skip_file, "w") as f:
            f.write("\n".join(outcomes))
        run_env = dict(env, CLIENT_CHECK_LOG=log, CLIENT_CHECK_SKIP=skip_file)
        open(log, "w").close()
        proc = subprocess.Popen(
            [sys.executable, "-m", "pytest", "-q", "-p", "no:cacheprovider",
             "-p", "client_check_plugin", *args],
            cwd=workdir, env=run_env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        hung = False
        last_size, last_change = 0, time.monotonic()
        while proc.poll() is None:
            time.sleep(0.5)
            size = os.path.getsize(log)
            if size != last_size:
                last_size, last_change = size, time.monotonic()
            elif time.monotonic() - last_change > hang_seconds:
                proc.kill()
                proc.wait()
                hung = True
        running, finished_session = None, False
        with open(log) as f:
            for line in f:
                rec = json.loads(line)
                if "start" in rec:
                    running = rec["start"]
                elif "test" in rec:
                    outcomes[rec["test"]] = rec["outcome"]
                    if rec["test"] == running:
                        running = None
                elif "session" in rec:
                    finished_session = True
        if running is not None:
            outcomes[running] = "hung" if hung else "crashed"
            continue
        if not finished_session:
            notes.append(f"pytest stopped outside a test (exit {proc.returncode})")
            if not outcomes:
                outcomes["<collection>"] = "crashed"
        break
    for path in (log, skip_file):
        if os.path.exists(path):
            os.remove(path)
    return outcomes, notes


def bound_names(orb):
    """Names the client's libraries bind to ORB once everything is loaded."""
    with tempfile.TemporaryDirectory() as tmp:
        env = flavour_env(orb, None)
        env.update(LD_DEBUG="bindings", LD_BIND_NOW="1", LD_DEBUG_OUTPUT=f"{tmp}/bind")
        subprocess.run([sys.executable, "-c",
                        "import numpy, scipy.linalg, scipy.sparse.linalg, scipy.optimize"],
                       env=env, check=False, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        names = set()
        pattern = re.compile(r"to (\S+) \[\d+\]: normal symbol `([^'`]+)")
        for name in os.listdir(tmp):
            with open(os.path.join(tmp, name), errors="replace") as f:
                for line in f:
                    m = pattern.search(line)
                    if m and os.path.realpath(m.group(1)) == os.path.realpath(orb):
                        names.add(m.group(2))
        return sorted(names)


def summary(outcomes):
    counts = {}
    for o in outcomes.values():
        counts[o] = counts.get(o, 0) + 1
    order = ["passed", "failed", "error", "crashed", "hung", "skipped", "xfailed", "xpassed"]
    return ", ".join(f"{counts[o]} {o}" for o in order if o in counts) or "nothing ran"


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    ap.add_argument("--orb", required=True, help="path to liborb.so")
    ap.add_argument("--jobs", type=int, default=2, help="pytest processes at once")
    ap.add_argument("--threads", type=int, default=1,
                    help="ORB_NUM_THREADS for the ORB runs (0: the library's default)")
    ap.add_argument("--hang", type=float, default=300,
                    help="seconds without a finished test after which a run counts as hung")
    ap.add_argument("--suite", action="append", help="only the suites with these names")
    opts = ap.parse_args()
    orb = os.path.abspath(opts.orb)
    for lib in (f"{MULTIARCH}/blas/libblas.so.3", f"{MULTIARCH}/lapack/liblapack.so.3"):
        if not os.path.exists(lib):
            print(f"client-check: the reference library {lib} is missing (Debian's libblas3, "
                  "liblapack3)")
            return 1

    names = bound_names(orb)
    print(f"client-check: {len(names)} names bind to {opts.orb}: " + " ".join(names))
    if not names:
        print("client-check: nothing binds to ORB; the library or the preload is broken")
        return 1

    suites = [s for s in SUITES if not opts.suite or s[0] in opts.suite]
    start = time.monotonic()
    results, lock = {}, threading.Lock()
    with tempfile.TemporaryDirectory() as workdir, \
            concurrent.futures.ThreadPoolExecutor(max_workers=opts.jobs) as pool:
        jobs = {}
        for name, args in suites:
            for flavour in ("reference", "ORB"):
                env = flavour_env(orb if flavour == "ORB" else None, opts.threads)
                jobs[pool.submit(run_suite, args, env, opts.hang, workdir)] = (name, flavour)
        for fut in concurrent.futures.as_completed(jobs):
            with lock:
                results[jobs[fut]] = fut.result()

    regressions = []
    width = max(len(name) for name, _ in suites)
    for name, _ in suites:
        ref, ref_notes = results[(name, "reference")]
        got, orb_notes = results[(name, "ORB")]
        print(f"{name:<{width}}  reference: {summary(ref)}")
        print(f"{'':<{width}}  ORB:       {summary(got)}")
        for note in ref_notes:
            print(f"{'':<{width}}  reference run: {note}")
        for note in orb_notes:
            print(f"{'':<{width}}  ORB run: {note}")
        for test, outcome in sorted(ref.items()):
            if outcome in PASSING and got.get(test, "missing") not in PASSING:
                regressions.append((name, test, got.get(test, "missing")))
    print(f"client-check: {time.monotonic() - start:.0f} s")
    if regressions:
        print(f"client-check: {len(regressions)} tests pass with the reference and not with ORB:")
        for name, test, outcome in regressions:
            print(f"  {outcome.upper():8s} {name}: {test}")
        return 1
    print("client-check: no test passes with the reference and fails with ORB")
    return 0


if __name__ == "__main__":
    sys.exit(main())
