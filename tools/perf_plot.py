#!/usr/bin/python3
"""Draws the graphs of docs/performance.md from the CSV the benchmarks write
with --csv (tools/perf-report.sh runs them), and writes the page.

    tools/perf_plot.py results.csv docs [--seconds S] [--command CMD]
"""
import argparse
import csv
import datetime
import os
import platform
import subprocess
from collections import defaultdict

import matplotlib

matplotlib.use("svg")
# Text stays text and the files do not change when the figures do not.
matplotlib.rcParams["svg.fonttype"] = "none"
matplotlib.rcParams["svg.hashsalt"] = "orb"
import matplotlib.pyplot as plt  # noqa: E402

DENSE = [
    ("sgemm", "sgemm, square, C = A B"),
    ("cgemm", "cgemm, square"),
    ("dgemm", "DGEMM, square"),
    ("ssyrk", "ssyrk, lower, n x n times its transpose"),
    ("strsm", "strsm, left lower, n right-hand sides"),
    ("sgetrf", "sgetrf, LU with partial pivoting"),
    ("spotrf", "spotrf, Cholesky, lower"),
    ("sgeqrf", "sgeqrf, Householder QR"),
    ("ssyevrA", "ssyevr, all eigenpairs"),
    ("sgesddA", "sgesdd, all singular vectors"),
]
STYLE = {"ORB": "C0", "OpenBLAS": "C1", "BLIS": "C2", "refBLAS": "C3", "refLAPACK": "C3"}


def processor():
    try:
        with open("/proc/cpuinfo") as f:
            for line in f:
                if line.startswith("model name"):
                    return line.split(":", 1)[1].strip()
    except OSError:
        pass
    return platform.processor() or "unknown processor"


def commit():
    try:
        return subprocess.run(["git", "rev-parse", "--short", "HEAD"], capture_output=True,
                              text=True, check=True).stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        return "unknown"


def square_n(routine, shape):
    """n of a square problem, or None for the other shapes of a routine."""
    parts = [int(p) for p in shape.split("x")]
    if routine in ("sgemm", "cgemm", "dgemm", "ssyrk") and len(set(parts)) != 1:
        return None
    return parts[0]


def label(library, target):
    if target == "win32":
        return f"{library} (32-bit, wine)" if library != "ORB" else "ORB (orb.dll, wine)"
    return library


def dense_figure(rows, routine, title, path):
    threads = sorted({r["threads"] for r in rows})
    fig, axes = plt.subplots(1, len(threads), figsize=(5 * len(threads), 3.8), squeeze=False)
    for ax, nt in zip(axes[0], threads):
        lines = defaultdict(list)
        for r in rows:
            if r["threads"] == nt:
                lines[(r["library"], r["target"])].append((r["n"], r["value"]))
        for (library, target), points in sorted(lines.items()):
            points.sort()
            ax.plot([p[0] for p in points], [p[1] for p in points],
                    marker="o", color=STYLE.get(library, None),
                    linestyle="--" if target == "win32" else "-", label=label(library, target))
        ax.set_xscale("log", base=2)
        ax.set_xlabel("n")
        ax.set_ylabel("GFLOP/s")
        ax.set_ylim(bottom=0)
        ax.set_title(f"{nt} thread{'s' if nt > 1 else ''}")
        ax.grid(alpha=0.3)
        ax.legend(fontsize=8)
    fig.suptitle(title)
    fig.tight_layout()
    fig.savefig(path, metadata={"Date": None})
    plt.close(fig)


def sparse_figure(rows, path):
    matrices = sorted({r["shape"] for r in rows})
    threads = sorted({r["threads"] for r in rows})
    solvers = sorted({r["library"] for r in rows}, key=lambda s: (not s.startswith("ORB"), s))
    fig, axes = plt.subplots(2, len(threads), figsize=(5.5 * len(threads), 7), squeeze=False)
    for col, nt in enumerate(threads):
        for row, phase in enumerate(("factor", "solve")):
            ax = axes[row][col]
            width = 0.8 / max(len(solvers), 1)
            for k, solver in enumerate(solvers):
                values = []
                for m in matrices:
                    v = [r["value"] for r in rows if r["routine"] == phase and r["shape"] == m
                         and r["threads"] == nt and r["library"] == solver]
                    values.append(v[0] if v else 0)
                ax.bar([i + k * width for i in range(len(matrices))], values, width, label=solver)
            ax.set_xticks([i + 0.4 - width / 2 for i in range(len(matrices))])
            ax.set_xticklabels(matrices, rotation=20, fontsize=8)
            ax.set_yscale("log")
            ax.set_ylabel(f"{phase} seconds")
            ax.set_title(f"{phase}, {nt} thread{'s' if nt > 1 else ''}")
            ax.grid(alpha=0.3, axis="y")
            ax.legend(fontsize=7)
    fig.suptitle("Sparse direct solvers on the generated matrices (lower is better)")
    fig.tight_layout()
    fig.savefig(path, metadata={"Date": None})
    plt.close(fig)


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("csv")
    ap.add_argument("docs")
    ap.add_argument("--seconds", type=int, default=0)
    ap.add_argument("--command", default="tools/perf-report.sh")
    args = ap.parse_args()
    with open(args.csv, newline="") as f:
        rows = list(csv.DictReader(f))
    for r in rows:
        r["threads"] = int(r["threads"])
        r["value"] = float(r["value"])
    figdir = os.path.join(args.docs, "perf")
    os.makedirs(figdir, exist_ok=True)
    drawn = []
    for routine, title in DENSE:
        sel = []
        for r in rows:
            if r["routine"] != routine or r["unit"] != "GFLOP/s":
                continue
            n = square_n(routine, r["shape"])
            if n is not None:
                sel.append(dict(r, n=n))
        if sel:
            dense_figure(sel, routine, title, os.path.join(figdir, f"{routine}.svg"))
            drawn.append((routine, title))
    sparse = [r for r in rows if r["routine"] in ("factor", "solve") and r["unit"] == "s"]
    if sparse:
        sparse_figure(sparse, os.path.join(figdir, "sparse.svg"))
    targets = sorted({r["target"] for r in rows})
    spreads = [float(r["spread_pct"]) for r in rows if r["spread_pct"]]
    spreads.sort()
    median_spread = spreads[len(spreads) // 2] if spreads else 0
    with open(os.path.join(args.docs, "performance.md"), "w") as f:
        f.write("# Performance\n\n")
        f.write(f"- Processor: {processor()}, {os.cpu_count()} cores\n")
        f.write(f"- Date: {datetime.date.today().isoformat()}; commit {commit()}\n")
        f.write(f"- Command: `{args.command}` "
                f"({args.seconds // 60} min {args.seconds % 60} s from scratch)\n")
        f.write(f"- Targets measured: {', '.join(targets)}\n")
        f.write(f"- Repetition spread (slowest against fastest repeat), median over all "
                f"points: {median_spread:.1f} %; every figure is the best repeat\n\n")
        f.write("The libraries are loaded side by side in one process and timed in turn "
                "(bench/blas_compare, bench/lapack_compare, bench/sparse_compare); "
                "OpenBLAS and BLIS are Debian's pthread builds, refBLAS Debian's reference "
                "BLAS and refLAPACK the reference LAPACK over OpenBLAS's BLAS. Dashed lines "
                "are 32-bit programs under wine. The raw figures are in "
                "build/perf/results.csv after a run.\n\n")
        for routine, title in drawn:
            f.write(f"## {title}\n\n![{routine}](perf/{routine}.svg)\n\n")
        if sparse:
            f.write("## Sparse direct solvers\n\nFactor and solve seconds of TESSERA (ORB), "
                    "CHOLMOD, UMFPACK and MUMPS on the generated matrices of "
                    "bench/sparse_compare.\n\n![sparse](perf/sparse.svg)\n")


if __name__ == "__main__":
    main()
