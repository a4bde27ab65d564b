#!/usr/bin/env python3
"""The export table at work: generates the link-time export lists, checks a
built library against them, and reports progress.

  exports.py generate --table T --target linux|win32 (--nm NM --archive A | --symbols F) --out DIR
      Writes orb.def (win32), orb.map and orb_aliases.ld (linux), orb_fortran.c
      and exported.txt: the names of every row whose entry routine the archive
      defines, with their aliases.
  exports.py header-names --table T --out FILE
      Writes a C file that takes the address of every name through orb.h, so a
      name missing from the header or declared with a different kind of symbol
      fails to compile.
  exports.py check --table T --target linux|win32 --binary B --expected LIST [--nm NM] [--objdump OD]
      Reads the real export list of the binary and checks it against the table.
  exports.py report --table T --target linux|win32 --binary B [--nm NM] [--objdump OD]
      Prints "N of 398 names exported".
  --extra T2 (generate, check, report): a second table of the same columns, the
      C interfaces exported beside the counted names; report prints their count
      on a line of its own.
  exports.py kinds --table T --expected LIST --src DIR
      Checks that the entry of every exported row goes through the helper of
      its kind: orb::entry::checked or orb::entry::lapack; a plain entry
      through orb::entry::plain or none.
"""
import argparse
import collections
import os
import re
import subprocess
import sys

Row = collections.namedtuple("Row", "name entry kind conv fortran family")


def read_table(path):
    rows = []
    with open(path) as f:
        for line in f:
            line = line.rstrip("\n")
            if not line or line.startswith("#") or line.startswith("name\t"):
                continue
            rows.append(Row(*line.split("\t")))
    names = [r.name for r in rows]
    dup = [n for n, c in collections.Counter(names).items() if c > 1]
    if dup:
        sys.exit(f"export table: duplicate names {dup}")
    by_name = {r.name: r for r in rows}
    for r in rows:
        if r.entry not in by_name or by_name[r.entry].entry != r.entry:
            sys.exit(f"export table: {r.name} points to {r.entry}, which is not an entry row")
        if r.conv != by_name[r.entry].conv:
            sys.exit(f"export table: {r.name} and its entry {r.entry} differ in calling convention")
    return rows


def stdcall_bytes(conv):
    m = re.fullmatch(r"stdcall(\d+)", conv)
    return int(m.group(1)) if m else None


def fortran_alias(row):
    """(alias name, wrapper argument count or None) of a row, or None."""
    if row.fortran == "-":
        return None
    m = re.fullmatch(r"cret(\d+):(\w+)", row.fortran)
    if m:
        return m.group(2), int(m.group(1))
    return row.fortran, None


def complex_result_wrapper(alias, entry, nargs, storage, attrs=""):
    """C source of `alias`, returning by value the complex result that `entry`
    writes through a hidden first pointer (its nargs further arguments passed on)."""
    params = ", ".join(f"const void *a{i}" for i in range(nargs))
    call = ", ".join(["&r"] + [f"a{i}" for i in range(nargs)])
    decl = ", ".join(["void *"] + ["const void *"] * nargs)
    return (f"{storage} void {entry}({decl});\n"
            f"{attrs}float _Complex {alias}({params}) {{\n"
            f"  float _Complex r;\n  {entry}({call});\n  return r;\n}}\n")


def symbol_of(row, target):
    """The object-file symbol that defines an entry row."""
    n = stdcall_bytes(row.conv)
    if target == "win32":
        return f"_{row.name}@{n}" if n is not None else f"_{row.name}"
    return row.name


def defined_symbols(nm, archive):
    out = subprocess.run([nm, "--defined-only", "-g", archive], check=True,
                         capture_output=True, text=True).stdout
    syms = set()
    for line in out.splitlines():
        parts = line.split()
        if len(parts) == 3 and parts[1] in "TtWD":
            syms.add(parts[2])
    return syms


def exported_rows(rows, target, symbols):
    built = {r.name for r in rows if r.entry == r.name and symbol_of(r, target) in symbols}
    return [r for r in rows if r.entry in built]


def extra_rows(args):
    """The rows of the second table (--extra), or none."""
    return read_table(args.extra) if getattr(args, "extra", None) else []


def write(path, text):
    with open(path, "w") as f:
        f.write(text)


def generate(args):
    rows = read_table(args.table) + extra_rows(args)
    if args.symbols:
        with open(args.symbols) as f:
            symbols = set(f.read().split())
    else:
        symbols = defined_symbols(args.nm, args.archive)
    live = exported_rows(rows, args.target, symbols)
    os.makedirs(args.out, exist_ok=True)
    by_name = {r.name: r for r in rows}
    exported = []  # (name, entry name)

    # Windows: the module definition file, aliases as name = entry.
    deff = ["; Generated from the export table. Do not edit.", "LIBRARY orb.dll", "EXPORTS"]
    for r in live:
        n = stdcall_bytes(r.conv)
        target_sym = f"{r.entry}@{n}" if n is not None else r.entry
        deff.append(f"  {r.name}" if target_sym == r.name else f"  {r.name} = {target_sym}")
    write(os.path.join(args.out, "orb.def"), "\n".join(deff) + "\n")
    # Windows: the import library's definition, for dlltool -k: a callee-pops
    # name carries its argument bytes (the symbol a caller of the header's
    # declaration links against) and is imported from the DLL without them.
    implib = ["; Generated from the export table. Do not edit.", "LIBRARY orb.dll", "EXPORTS"]
    for r in live:
        n = stdcall_bytes(r.conv)
        implib.append(f"  {r.name}@{n}" if n is not None else f"  {r.name}")
    write(os.path.join(args.out, "orb_implib.def"), "\n".join(implib) + "\n")

    # Linux: version script, alias assignments and complex-result wrappers.
    globals_, assigns, wrappers = [], [], []
    for r in live:
        globals_.append(r.name)
        exported.append((r.name, r.entry))
        if r.name != r.entry:
            assigns.append(f"{r.name} = {r.entry};")
        fa = fortran_alias(r)
        if args.target == "linux" and fa:
            alias, nargs = fa
            globals_.append(alias)
            exported.append((alias, r.entry))
            if nargs is None:
                assigns.append(f"{alias} = {r.entry};")
            else:
                wrappers.append(complex_result_wrapper(alias, r.entry, nargs, "extern",
                                                       "ORB_FORTRAN "))
    if globals_:
        vmap = "{\n  global:\n" + "".join(f"    {g};\n" for g in globals_) + "  local: *;\n};\n"
    else:
        vmap = "{\n  local: *;\n};\n"
    write(os.path.join(args.out, "orb.map"), vmap)
    write(os.path.join(args.out, "orb_aliases.ld"),
          "/* Generated from the export table: names that share an entry. */\n" +
          "".join(a + "\n" for a in assigns))
    fort = ["/* Generated from the export table: Fortran-convention wrappers for the",
            "   functions whose complex result a Fortran caller expects by value. */"]
    if args.target == "linux" and wrappers:
        fort.append('#define ORB_FORTRAN __attribute__((visibility("default")))')
        fort += wrappers
    else:
        fort.append("typedef int orb_no_fortran_wrappers;")
    write(os.path.join(args.out, "orb_fortran.c"), "\n".join(fort) + "\n")
    if args.target == "win32":
        exported = [(r.name, r.entry) for r in live]
    write(os.path.join(args.out, "exported.txt"),
          "".join(f"{n}\t{e}\n" for n, e in exported))
    return 0


def header_names(args):
    rows = read_table(args.table)
    lines = ['/* Generated from the export table: every exported name is declared in orb.h. */',
             '#include "orb.h"', "typedef void (*orb_any_fn)(void);",
             "const orb_any_fn orb_every_export[] = {"]
    lines += [f"    (orb_any_fn){r.name}," for r in rows]
    lines += ["};", f"const int orb_every_export_count = {len(rows)};"]
    write(args.out, "\n".join(lines) + "\n")
    return 0


def binary_exports(args):
    """{name: address} of the binary's exported functions."""
    if args.target == "linux":
        out = subprocess.run([args.nm or "nm", "-D", "--defined-only", args.binary], check=True,
                             capture_output=True, text=True).stdout
        syms = {}
        for line in out.splitlines():
            parts = line.split()
            if len(parts) == 3:
                syms[parts[2].split("@")[0]] = int(parts[0], 16)
        return syms
    out = subprocess.run([args.objdump or "objdump", "-p", args.binary], check=True,
                         capture_output=True, text=True).stdout
    # Export Address Table: "[   0] +base[   1] 1234 Export RVA"
    # Name Pointer Table:   "[   0] +base[   1]  0000 name" (binutils 2.40) or "[   0] name"
    rva, syms, section = {}, {}, None
    for line in out.splitlines():
        if line.startswith("Export Address Table"):
            section = "eat"
            continue
        if line.startswith("[Ordinal/Name Pointer] Table"):
            section = "npt"
            continue
        if section and not line.strip():
            if section == "npt":
                break
            continue
        if section == "eat":
            m = re.match(r"\s*\[\s*(\d+)\]\s+\+base\[\s*(\d+)\]\s+([0-9a-fA-F]+)", line)
            if m:
                rva[int(m.group(1))] = int(m.group(3), 16)
        elif section == "npt":
            m = re.match(r"\s*\[\s*(\d+)\](?:\s+\+base\[\s*\d+\]\s+([0-9a-fA-F]+))?\s+(\S+)\s*$", line)
            if m:
                index = int(m.group(2), 16) if m.group(2) else int(m.group(1))
                syms[m.group(3)] = rva.get(index)
    return syms


def check(args):
    rows = read_table(args.table)
    by_name = {r.name: r for r in rows + extra_rows(args)}
    syms = binary_exports(args)
    expected = {}
    with open(args.expected) as f:
        for line in f:
            n, e = line.split()
            expected[n] = e
    problems = []
    # 1. The binary exports exactly the generated list.
    for n in sorted(set(syms) - set(expected)):
        problems.append(f"exported but not in the export list: {n}")
    for n in sorted(set(expected) - set(syms)):
        problems.append(f"in the export list but not exported: {n}")
    # 2. The list follows the table: every name of a built entry, every alias
    #    at its entry's address, Fortran spellings only where the table has them.
    fortran = {}
    for r in rows:
        fa = fortran_alias(r)
        if fa:
            fortran[fa[0]] = (r, fa[1])
    entries_out = {e for n, e in expected.items()}
    for r in by_name.values():
        if r.entry in entries_out and r.name not in expected:
            problems.append(f"{r.name} shares the exported entry {r.entry} but is not exported")
    for n, e in expected.items():
        if n in by_name:
            if by_name[n].entry != e:
                problems.append(f"{n} bound to {e}, the table says {by_name[n].entry}")
        elif n in fortran:
            r, wrapper = fortran[n]
            if args.target != "linux":
                problems.append(f"Fortran alias {n} exported on {args.target}")
            if r.entry != e:
                problems.append(f"Fortran alias {n} bound to {e}, the table says {r.entry}")
            if wrapper is None and n in syms and e in syms and syms[n] != syms[e]:
                problems.append(f"Fortran alias {n} is not at the address of {e}")
        else:
            problems.append(f"{n} is neither a table name nor a Fortran alias of one")
    for n, e in expected.items():
        if n in by_name and n in syms and e in syms and syms[n] != syms[e]:
            problems.append(f"{n} is not at the address of its entry {e}")
    for p in problems:
        print("FAIL:", p)
    n_table = sum(1 for n in syms if n in by_name)
    print(f"{n_table} of {len(rows)} names exported, {len(syms)} symbols in all; "
          f"{len(problems)} problem(s)")
    return 1 if problems else 0


def report(args):
    rows = read_table(args.table)
    syms = binary_exports(args)
    fams = collections.OrderedDict()
    for r in rows:
        t = fams.setdefault(r.family, [0, 0])
        t[1] += 1
        if r.name in syms:
            t[0] += 1
    total = sum(t[0] for t in fams.values())
    print(f"{total} of {len(rows)} names exported")
    for fam, (got, n) in fams.items():
        print(f"  {fam:8s} {got:4d} of {n}")
    extra = extra_rows(args)
    if extra:
        print(f"{sum(1 for r in extra if r.name in syms)} CBLAS/LAPACKE names exported beside them")
    return 0


KIND_CALL = {"checked": "checked", "lapack": "lapack", "plain": "plain"}


def entry_bodies(src):
    """{name: body} of every ORB_API function defined under src."""
    bodies = {}
    head = re.compile(r"ORB_API\s+[\w\s\*]*?\b(\w+)\s*\(")
    for root, _, files in os.walk(src):
        for fn in files:
            if not fn.endswith(".cpp"):
                continue
            with open(os.path.join(root, fn)) as f:
                text = f.read()
            for m in head.finditer(text):
                depth, i = 1, m.end()
                while depth and i < len(text):  # the parameter list
                    depth += {"(": 1, ")": -1}.get(text[i], 0)
                    i += 1
                j = i
                while j < len(text) and text[j] not in "{;":
                    j += 1
                if j == len(text) or text[j] == ";":
                    continue  # a declaration
                depth, k = 1, j + 1
                while depth and k < len(text):
                    depth += {"{": 1, "}": -1}.get(text[k], 0)
                    k += 1
                bodies[m.group(1)] = text[j:k]
    return bodies


def kinds(args):
    rows = read_table(args.table)
    with open(args.expected) as f:
        exported = {line.split("\t")[0] for line in f if line.strip()}
    bodies = entry_bodies(args.src)
    problems = []
    for r in rows:
        if r.name != r.entry or r.name not in exported:
            continue
        body = bodies.get(r.name)
        if body is None:
            problems.append(f"{r.name}: no ORB_API definition found")
            continue
        calls = {k for k, c in KIND_CALL.items() if re.search(rf"\b{c}\s*\(", body)}
        if calls != {r.kind} and not (r.kind == "plain" and not calls):
            found = ", ".join(sorted(calls)) or "none"
            problems.append(f"{r.name}: a {r.kind} entry, but it calls the helpers of: {found}")
    for p in problems:
        print("FAIL:", p)
    print(f"{sum(1 for r in rows if r.name == r.entry and r.name in exported)} exported entries, "
          f"{len(problems)} of another kind than the table says")
    return 1 if problems else 0


def main():
    ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    sub = ap.add_subparsers(dest="cmd", required=True)
    g = sub.add_parser("generate")
    g.add_argument("--table", required=True)
    g.add_argument("--target", choices=["linux", "win32"], required=True)
    g.add_argument("--nm")
    g.add_argument("--archive")
    g.add_argument("--symbols", help="a file listing the defined symbols, instead of --nm/--archive")
    g.add_argument("--out", required=True)
    g.add_argument("--extra")
    h = sub.add_parser("header-names")
    h.add_argument("--table", required=True)
    h.add_argument("--out", required=True)
    for name in ("check", "report"):
        c = sub.add_parser(name)
        c.add_argument("--table", required=True)
        c.add_argument("--target", choices=["linux", "win32"], required=True)
        c.add_argument("--binary", required=True)
        c.add_argument("--nm")
        c.add_argument("--objdump")
        c.add_argument("--extra")
        if name == "check":
            c.add_argument("--expected", required=True)
    k = sub.add_parser("kinds")
    k.add_argument("--table", required=True)
    k.add_argument("--expected", required=True)
    k.add_argument("--src", required=True)
    args = ap.parse_args()
    return {"generate": generate, "header-names": header_names, "check": check,
            "report": report, "kinds": kinds}[args.cmd](args)


if __name__ == "__main__":
    sys.exit(main())
