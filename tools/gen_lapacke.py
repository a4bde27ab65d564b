#!/usr/bin/python3
"""Writes the LAPACKE entries from src/interfaces/lapack_signatures.tsv.

Outputs: include/orb_lapacke.h (declarations), src/interfaces/lapacke_entries.cpp
(the wrappers over the Fortran-convention routines) and the lapacke rows at the
end of src/service/exports_c.tsv. With --check nothing is written and the exit
status says whether the committed files match what would be written.
"""
import os
import re
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
TABLE = os.path.join(ROOT, "src/interfaces/lapack_signatures.tsv")
HEADER = os.path.join(ROOT, "include/orb_lapacke.h")
SOURCE = os.path.join(ROOT, "src/interfaces/lapacke_entries.cpp")
EXPORTS = os.path.join(ROOT, "src/service/exports_c.tsv")
MARK = "# LAPACKE entries, written by tools/gen_lapacke.py (do not edit below)\n"

C_TYPE = {"s": "float", "c": "lapack_complex_float"}
F_TYPE = {"s": "float", "c": "orb_complex8"}


class Arg:
    def __init__(self, text):
        parts = text.split(":", 2)
        self.name, self.kind = parts[0], parts[1]
        self.shape = parts[2] if len(parts) > 2 else ""


def read_table():
    rows = []
    with open(TABLE) as f:
        for line in f:
            line = line.rstrip("\n")
            if not line or line.startswith("#"):
                continue
            routine, prefixes, args = line.split("\t")
            rows.append((routine, prefixes.split(), [Arg(a) for a in args.split()]))
            if rows[-1][2] and rows[-1][2][0].kind == "nolayout":
                for a in rows[-1][2][1:]:
                    if a.kind in ("ge", "gein", "geinx"):
                        sys.exit(f"{routine}: a matrix needs the layout argument")
    return rows


def split_top(shape):
    """Splits "rows,cols" at the comma outside parentheses."""
    depth = 0
    for i, ch in enumerate(shape):
        depth += ch == "("
        depth -= ch == ")"
        if ch == "," and depth == 0:
            return shape[:i], shape[i + 1:]
    sys.exit(f"shape {shape} is not rows,cols")


AUX = {"iwork": "lapack_int", "rwork": "float", "swork": None}
# Workspaces sized by the query: the element type (None: the scalar type).
QUERIED = {"work": None, "rworkq": "float", "iworkq": "lapack_int"}
# Workspaces whose length the same query returns in their own first element,
# with no length argument.
FIRST = {"rworkz": "float", "iworkz": "lapack_int"}


def elem(p, a):
    return FIRST[a.kind] if a.kind in FIRST else QUERIED[a.kind] or C_TYPE[p]


def aux_type(p, a):
    return AUX[a.kind] or C_TYPE[p]


def cxx_expr(shape):
    shape = re.sub(r"\bmin\(", "std::min<lapack_int>(", shape)
    return re.sub(r"\bmax\(", "std::max<lapack_int>(", shape)


def has_layout(args):
    return not args or args[0].kind != "nolayout"


def c_params(p, args, with_work):
    """The C parameter list after the layout, and each argument's position."""
    t = C_TYPE[p]
    out, pos = [], {}
    n = 2 if has_layout(args) else 1
    for a in args:
        if a.kind == "nolayout":
            continue
        elif a.kind == "int" or a.kind == "ld":
            out.append(f"lapack_int {a.name}")
        elif a.kind == "char":
            out.append(f"char {a.name}")
        elif a.kind == "ge" or a.kind == "vout":
            out.append(f"{t} *{a.name}")
        elif a.kind in ("gein", "geinx", "vin"):
            out.append(f"const {t} *{a.name}")
        elif a.kind == "iout":
            out.append(f"lapack_int *{a.name}")
        elif a.kind == "rout":
            out.append(f"float *{a.name}")
        elif a.kind == "rin":
            out.append(f"const float *{a.name}")
        elif a.kind in AUX:
            if not with_work:
                continue
            out.append(f"{aux_type(p, a)} *{a.name}")
        elif a.kind in FIRST:
            if not with_work:
                continue
            out.append(f"{FIRST[a.kind]} *{a.name}")
        elif a.kind == "wld":
            if not with_work:
                continue
            out.append(f"lapack_int {a.name}")
        elif a.kind == "superb":
            if with_work:
                continue
            out.append(f"float *{a.name}")
        elif a.kind == "iin":
            out.append(f"const lapack_int *{a.name}")
        elif a.kind in QUERIED:
            if not with_work:
                continue
            out.append(f"{elem(p, a)} *{a.name}")
            pos[a.name] = n
            n += 1
            out.append(f"lapack_int l{a.name}")
            pos["l" + a.name] = n
            n += 1
            continue
        elif a.kind == "real":
            out.append(f"float {a.name}")
        elif a.kind == "intout":
            out.append(f"lapack_int *{a.name}")
        elif a.kind == "realout":
            out.append(f"float *{a.name}")
        else:
            sys.exit(f"unknown argument kind {a.kind}")
        pos[a.name] = n
        n += 1
    return out, pos


def prototypes(p, routine, args):
    name = f"LAPACKE_{p}{routine}"
    hi, _ = c_params(p, args, False)
    lo, _ = c_params(p, args, True)
    lead = "int matrix_layout, " if has_layout(args) else ""
    return (f"lapack_int {name}({lead}{', '.join(hi)})",
            f"lapack_int {name}_work({lead}{', '.join(lo)})")


def work_body(p, routine, args):
    name = f"LAPACKE_{p}{routine}_work"
    _, pos = c_params(p, args, True)
    queried = [a for a in args if a.kind in QUERIED]
    has_work = bool(queried)
    lines = [f"  const char *self = \"{name}\";"]
    if has_layout(args):
        lines += ["  if (!layout_ok(matrix_layout)) return report(self, 1);",
                  "  const bool row = matrix_layout == LAPACK_ROW_MAJOR;"]
    if has_work and has_layout(args):
        test = " || ".join(f"l{a.name} == -1" for a in queried)
        lines.append(f"  const bool query = {test};")
    copy = "row && !query" if has_work else "row"
    mats = []
    for i, a in enumerate(args):
        if a.kind in ("ge", "gein", "geinx"):
            ld = args[i + 1]
            rows, cols = (cxx_expr(s) for s in split_top(a.shape))
            lines.append(f"  if (row && {ld.name} < std::max<lapack_int>(1, {cols})) "
                         f"return report(self, {pos[ld.name]});")
            mats.append((a, ld, rows, cols))
    lines.append("  try {")
    for a, ld, rows, cols in mats:
        const = "" if a.kind == "ge" else "const "
        write = "true" if a.kind == "ge" else "false"
        lines.append(f"    ColMajor<{const}{C_TYPE[p]}> {a.name}_(row, {copy}, {rows}, {cols}, "
                     f"{a.name}, {ld.name}, {write});")
    call = []
    lengths = 0
    f = F_TYPE[p]
    for a in args:
        if a.kind in ("int", "real", "wld"):
            call.append(f"&{a.name}")
        elif a.kind in ("intout", "realout"):
            call.append(a.name)
        elif a.kind == "char":
            call.append(f"&{a.name}")
            lengths += 1
        elif a.kind == "ge":
            call.append(f"reinterpret_cast<{f} *>({a.name}_.data())")
            call.append(f"{a.name}_.ld()")
        elif a.kind == "gein":
            call.append(f"reinterpret_cast<const {f} *>({a.name}_.data())")
            call.append(f"{a.name}_.ld()")
        elif a.kind == "geinx":
            call.append(f"reinterpret_cast<{f} *>(const_cast<{C_TYPE[p]} *>({a.name}_.data()))")
            call.append(f"{a.name}_.ld()")
        elif a.kind == "swork":
            call.append(f"reinterpret_cast<{f} *>({a.name})")
        elif a.kind in ("iout", "iin", "rout", "rin") or a.kind in AUX or a.kind in FIRST:
            call.append(a.name)
        elif a.kind == "vout":
            call.append(f"reinterpret_cast<{f} *>({a.name})")
        elif a.kind == "vin":
            call.append(f"reinterpret_cast<const {f} *>({a.name})")
        elif a.kind == "work":
            call.append(f"reinterpret_cast<{f} *>(work)")
            call.append("&lwork")
        elif a.kind in QUERIED:
            call.append(a.name)
            call.append(f"&l{a.name}")
    call.append("&info")
    call += ["1"] * lengths
    lines.append("    lapack_int info = 0;")
    lines.append(f"    ::{p}{routine}({', '.join(call)});")
    # A bad argument's position counts the layout argument when there is one.
    shift = " - 1" if has_layout(args) else ""
    lines.append(f"    return info < 0 ? info{shift} : info;")
    lines.append("  } catch (const std::bad_alloc &) {")
    lines.append("    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);")
    lines.append("  }")
    return lines


def high_body(p, routine, args):
    lines = layout_high_body(p, routine, args)
    if has_layout(args):
        return lines
    return [line.replace("_work(matrix_layout, ", "_work(") for line in lines
            if "layout_ok" not in line]


def layout_high_body(p, routine, args):
    name = f"LAPACKE_{p}{routine}"
    aux = [a for a in args if a.kind in AUX]
    queried = [a for a in args if a.kind in QUERIED or a.kind in FIRST]
    superb = [a for a in args if a.kind == "superb"]
    lines = [f"  if (!layout_ok(matrix_layout)) return report(\"{name}\", 1);"]
    if not queried and not aux:
        names = [a.name for a in args if a.kind not in ("nolayout", "wld")]
        lines.append(f"  return {name}_work(matrix_layout, {', '.join(names)});")
        return lines
    for a in aux:
        lines.append(f"  std::vector<{aux_type(p, a)}> {a.name};")
    if aux:
        lines.append("  try {")
        for a in aux:
            lines.append(f"    {a.name}.resize(static_cast<std::size_t>("
                         f"std::max<lapack_int>(1, {cxx_expr(a.shape)})));")
        lines.append("  } catch (const std::bad_alloc &) {")
        lines.append(f"    return out_of_memory(\"{name}\", LAPACK_WORK_MEMORY_ERROR);")
        lines.append("  }")

    def arguments(query):
        out = []
        for a in args:
            if a.kind in QUERIED:
                out += [f"&{a.name}_size", "-1"] if query else [f"{a.name}.data()", f"l{a.name}"]
            elif a.kind in FIRST:
                out.append(f"&{a.name}_size" if query else f"{a.name}.data()")
            elif a.kind in AUX:
                out.append(f"{a.name}.data()")
            elif a.kind == "wld":
                out.append(f"std::max<lapack_int>(1, {cxx_expr(a.shape)})")
            elif a.kind not in ("superb", "nolayout"):
                out.append(a.name)
        return ", ".join(out)

    if queried:
        for a in queried:
            lines.append(f"  {elem(p, a)} {a.name}_size{{}};")
        lines.append(f"  lapack_int info = {name}_work(matrix_layout, {arguments(True)});")
        lines.append("  if (info != 0) return info;")
        for a in queried:
            lines.append(f"  std::vector<{elem(p, a)}> {a.name};")
            lines.append(f"  lapack_int l{a.name} = workspace_length({a.name}_size);")
        lines.append("  try {")
        for a in queried:
            lines.append(f"    {a.name}.resize(static_cast<std::size_t>(l{a.name}));")
        lines.append("  } catch (const std::bad_alloc &) {")
        lines.append(f"    return out_of_memory(\"{name}\", LAPACK_WORK_MEMORY_ERROR);")
        lines.append("  }")
    if not superb:
        lines.append(f"  return {name}_work(matrix_layout, {arguments(False)});")
        return lines
    # The unconverged superdiagonal of the bidiagonal form: the real routine
    # leaves it from the second element of work, the complex one from the
    # first of rwork.
    source = "rwork.data()" if any(a.name == "rwork" for a in aux) else "work.data() + 1"
    lines.append(f"  const lapack_int result = {name}_work(matrix_layout, {arguments(False)});")
    for a in superb:
        lines.append(f"  for (lapack_int i = 0; i < {cxx_expr(a.shape)}; ++i) "
                     f"{a.name}[i] = std::real(({source})[i]);")
    lines.append("  return result;")
    return lines


HEADER_TOP = """\
/*
 * orb_lapacke.h: the C interface to ORB's single-precision LAPACK routines
 * (real s and complex c) with the conventional LAPACKE names. Written by
 * tools/gen_lapacke.py from src/interfaces/lapack_signatures.tsv.
 *
 * LAPACKE_xxx(matrix_layout, ...) sizes and allocates the workspace itself;
 * LAPACKE_xxx_work(matrix_layout, ...) takes the caller's. Matrices are
 * row-major (LAPACK_ROW_MAJOR) or column-major (LAPACK_COL_MAJOR); row-major
 * matrices are transposed into column-major copies and back. The result is
 * the routine's info; a bad argument gives minus its position in the C
 * argument list (the layout is argument 1) after a message through
 * LAPACKE_xerbla, and a failed allocation LAPACK_WORK_MEMORY_ERROR or
 * LAPACK_TRANSPOSE_MEMORY_ERROR. Complex values are lapack_complex_float,
 * C99 float _Complex (std::complex<float> in C++) unless the includer defines
 * lapack_complex_float to another type of the same layout.
 */
#ifndef ORB_LAPACKE_H
#define ORB_LAPACKE_H

#ifndef ORB_API
#if defined(ORB_BUILDING) && !defined(_WIN32)
#define ORB_API __attribute__((visibility("default")))
#else
#define ORB_API
#endif
#endif

#ifndef lapack_int
#define lapack_int int
#endif

#ifndef lapack_complex_float
#ifdef __cplusplus
#include <complex>
#define lapack_complex_float std::complex<float>
#else
#include <complex.h>
#define lapack_complex_float float _Complex
#endif
#endif

#define LAPACK_ROW_MAJOR 101
#define LAPACK_COL_MAJOR 102
#define LAPACK_WORK_MEMORY_ERROR -1010
#define LAPACK_TRANSPOSE_MEMORY_ERROR -1011

#ifdef __cplusplus
extern "C" {
#endif

/* Reports argument -info of routine name (info < 0) or a failed allocation. */
ORB_API void LAPACKE_xerbla(const char *name, lapack_int info);
"""

HEADER_END = """
#ifdef __cplusplus
}
#endif

#endif
"""

SOURCE_TOP = """\
// The LAPACKE entries, written by tools/gen_lapacke.py from
// src/interfaces/lapack_signatures.tsv; edit those, not this file.
// clang-format off
#include <algorithm>
#include <cstddef>
#include <new>
#include <vector>

#include "lapacke_support.h"

using namespace orb::lapacke;

extern "C" {
"""


def generate():
    rows = read_table()
    header = [HEADER_TOP]
    source = [SOURCE_TOP]
    exports = []
    for routine, prefixes, args in rows:
        header.append(f"\n/* {routine} */\n")
        for p in prefixes:
            hi, lo = prototypes(p, routine, args)
            header.append(f"ORB_API {hi};\nORB_API {lo};\n")
            source.append(f"\n{lo} {{\n" + "\n".join(work_body(p, routine, args)) + "\n}\n")
            source.append(f"\n{hi} {{\n" + "\n".join(high_body(p, routine, args)) + "\n}\n")
            for n in (f"LAPACKE_{p}{routine}", f"LAPACKE_{p}{routine}_work"):
                exports.append(f"{n}\t{n}\tplain\tcdecl\t-\tlapacke\n")
    header.append(HEADER_END)
    source.append("\n}  // extern \"C\"\n")
    exports.insert(0, "LAPACKE_xerbla\tLAPACKE_xerbla\tplain\tcdecl\t-\tlapacke\n")
    with open(EXPORTS) as f:
        table = f.read()
    table = table.split(MARK)[0] + MARK + "".join(exports)
    return {HEADER: "".join(header), SOURCE: "".join(source), EXPORTS: table}


def main():
    outputs = generate()
    check = "--check" in sys.argv
    stale = []
    for path, text in outputs.items():
        old = open(path).read() if os.path.exists(path) else None
        if old != text:
            stale.append(path)
            if not check:
                with open(path, "w") as f:
                    f.write(text)
    if check and stale:
        print("out of date (run tools/gen_lapacke.py):", *stale)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
