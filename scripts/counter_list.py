#!/usr/bin/env python3
"""The lists of numbers (global counters, fabric header types, ingress vectors,
punt reasons) and of paths, and the program's use of global counters.

  counter_list.py check          fail on a bad list row, on a counter the
                                 program uses outside the list, or on a
                                 README counter table that differs from the list
  counter_list.py write-readme   rewrite the README's counter table from the list

The root of the tree is the parent of this script's folder, or --root DIR.
"""

import argparse
import pathlib
import re
import sys

ROW = re.compile(r"^\s*([A-Z_]+)\((.*)\)\s*$")
IDENT = re.compile(r"^[A-Za-z_][A-Za-z0-9_]*$")

# Each list: its file, and per row macro the position of the name, of the
# number (None for a path list), of the block size, and of the meaning.
LISTS = {
    "include/global_counters.def": {
        "GLOBAL_COUNTER": (0, 1, None, 2),
        "GLOBAL_COUNTER_RANGE": (0, 1, 2, 3),
    },
    "include/nph_types.def": {"NPH_TYPE": (0, 1, None, 2)},
    "include/ingress_vectors.def": {"INGRESS_VECTOR": (0, 1, None, 2)},
    "include/punt_reasons.def": {"PUNT_REASON": (0, 1, None, 2)},
    "dplane/infra/drop_paths.def": {"DROP_PATH": (0, None, None, 1)},
    "dplane/infra/tail_paths.def": {"TAIL_PATH": (0, None, None, 3)},
}
COUNTER_LIST = "include/global_counters.def"

PROGRAM_DIRS = ["npu", "platform", "dplane", "include", "protocols"]
SOURCE_SUFFIXES = {".h", ".cpp", ".def"}

# The calls that take a global counter number, and the argument that holds it.
COUNTER_CALLS = [
    (re.compile(r"\bdrop_packet\s*\("), 1),
    (re.compile(r"\bdrop_packet_return_to_main\s*\("), 1),
    (re.compile(r"\blookup_request_ID_STATS_INC_GLB_CNT__\w+\s*\("), 1),
    (re.compile(r"\bstats_glb_cnt_request\s*\("), 2),
    (re.compile(r"\bnpu_drop_capture_inline\s*\("), 1),
    (re.compile(r"\bl3_ing_drop\s*\("), 3),
    (re.compile(r"\bearly_drop_packet_ing__\w+\s*\("), 3),
    (re.compile(r"\bdrop_packet_egr_common__\w+\s*\("), 3),
    (re.compile(r"\bl3_egr_lag_drop_\w+\s*\("), 1),
    (re.compile(r"\begr_l2_if_drop_with_stats\s*\("), 1),
]
# Assignments to a variable that carries a counter number to a later drop.
COUNTER_ASSIGN = re.compile(r"\b\w*(?:drop_counter_index|drop_ctr_idx|drop_np_counter)\s*=\s*([^;=][^;]*);")
# A constant of its own that looks like a counter number: a name that starts
# DROP_, CNT_ or GLB_, or ends _DROP or _COUNTER, given an integer.
COUNTER_LIKE_NAME = r"((?:DROP|CNT|GLB)_\w+|\w+_(?:DROP|COUNTER))\b"
PRIVATE_CONSTANT = re.compile(
    r"(?:\bconstexpr\s+[\w:]+\s+" + COUNTER_LIKE_NAME + r"\s*=|#\s*define\s+" + COUNTER_LIKE_NAME + r")"
    r"\s*(0[xX][0-9A-Fa-f]+|\d+)[uU]?\b"
)
# "type name": an argument of a declaration, not of a call.
PARAMETER = re.compile(r"^[\w:]+\s+\w+$")
INT_LITERAL = re.compile(r"^(0[xX][0-9A-Fa-f]+|\d+)[uU]?$")
README_BEGIN = "<!-- global counters: begin (scripts/counter_list.py write-readme) -->"
README_END = "<!-- global counters: end -->"


def split_args(text):
    """The fields of a row, split at commas outside quotes; empty ones kept."""
    fields, current, quoted = [], "", False
    for c in text:
        if c == '"':
            quoted = not quoted
        if c == "," and not quoted:
            fields.append(current.strip())
            current = ""
        else:
            current += c
    return fields + [current.strip()]


def read_list(root, rel, macros, errors):
    """The rows of one list: dicts of name, first, count, meaning, where."""
    rows = []
    for lineno, line in enumerate((root / rel).read_text().splitlines(), 1):
        m = ROW.match(line)
        if not m or line.lstrip().startswith("//"):
            continue
        where = f"{rel}:{lineno}"
        layout = macros.get(m.group(1))
        if layout is None:
            errors.append(f"{where}: unknown row kind {m.group(1)}")
            continue
        args = split_args(m.group(2))
        name_at, number_at, count_at, meaning_at = layout
        if len(args) != max(i for i in layout if i is not None) + 1:
            errors.append(f"{where}: row has {len(args)} fields: {line.strip()}")
            continue
        name, meaning = args[name_at], args[meaning_at]
        if not IDENT.match(name):
            errors.append(f"{where}: row has no name")
        if not (meaning.startswith('"') and meaning.endswith('"') and meaning.strip('" ')):
            errors.append(f"{where}: {name} has no meaning")
        row = {"name": name, "meaning": meaning.strip('"'), "where": where, "first": None, "count": 1}
        try:
            if number_at is not None:
                row["first"] = int(args[number_at], 0)
            if count_at is not None:
                row["count"] = int(args[count_at], 0)
        except ValueError:
            errors.append(f"{where}: {name} has no number")
            continue
        rows.append(row)
    return rows


def check_unique(rel, rows, errors):
    seen_names = {}
    for r in rows:
        if r["name"] in seen_names:
            errors.append(f"{r['where']}: name {r['name']} also at {seen_names[r['name']]}")
        seen_names.setdefault(r["name"], r["where"])
    numbered = sorted((r for r in rows if r["first"] is not None), key=lambda r: r["first"])
    for a, b in zip(numbered, numbered[1:]):
        if b["first"] < a["first"] + a["count"]:
            errors.append(f"{b['where']}: number 0x{b['first']:X} of {b['name']} is also {a['name']} ({a['where']})")
    if rel == COUNTER_LIST and [r["first"] for r in rows] != [r["first"] for r in numbered]:
        errors.append(f"{rel}: rows are not in ascending order of number")


def call_argument(text, open_paren, index):
    """The argument at index of the call whose '(' is at open_paren, or None."""
    depth, start, args = 0, open_paren + 1, []
    for i in range(open_paren, len(text)):
        c = text[i]
        if c in "([{":
            depth += 1
        elif c in ")]}":
            depth -= 1
            if depth == 0:
                args.append(text[start:i])
                break
        elif c == "," and depth == 1:
            args.append(text[start:i])
            start = i + 1
    return args[index].strip() if index < len(args) else None


def strip_comments(text):
    text = re.sub(r"/\*.*?\*/", lambda m: "\n" * m.group(0).count("\n"), text, flags=re.S)
    return re.sub(r"//[^\n]*", "", text)


def judge_counter_use(arg, counters, where, errors):
    if INT_LITERAL.match(arg):
        number = int(arg.rstrip("uU"), 0)
        listed = any(r["first"] <= number < r["first"] + r["count"] for r in counters)
        state = "is listed: use its name" if listed else "is not in " + COUNTER_LIST
        errors.append(f"{where}: counter number {arg} {state}")
        return
    for ident in re.findall(r"\b[A-Z][A-Z0-9_]*\b", arg):
        if ident not in {r["name"] for r in counters}:
            errors.append(f"{where}: counter {ident} is not in {COUNTER_LIST}")


def scan_program(root, counters, errors):
    files = [p for d in PROGRAM_DIRS for p in sorted((root / d).rglob("*")) if p.suffix in SOURCE_SUFFIXES]
    for path in files:
        rel = path.relative_to(root).as_posix()
        if rel == COUNTER_LIST:
            continue
        text = strip_comments(path.read_text())

        def where(pos):
            return f"{rel}:{text.count(chr(10), 0, pos) + 1}"

        for call, index in COUNTER_CALLS:
            for m in call.finditer(text):
                arg = call_argument(text, m.end() - 1, index)
                if arg and not PARAMETER.match(arg):
                    judge_counter_use(arg, counters, where(m.start()), errors)
        for m in COUNTER_ASSIGN.finditer(text):
            for part in re.split(r"[?:]", m.group(1)):
                judge_counter_use(part.strip(), counters, where(m.start()), errors)
        for m in PRIVATE_CONSTANT.finditer(text):
            name = m.group(1) or m.group(2)
            errors.append(f"{where(m.start())}: counter constant {name} = {m.group(3)} outside {COUNTER_LIST}")


def readme_table(counters):
    lines = ["| Number | Name | Meaning |", "|---|---|---|"]
    for r in counters:
        number = f"0x{r['first']:X}"
        if r["count"] > 1:
            number += f"..0x{r['first'] + r['count'] - 1:X}"
        lines.append(f"| {number} | `{r['name']}` | {r['meaning']} |")
    return "\n".join(lines)


def readme_parts(root):
    text = (root / "README.md").read_text()
    begin, end = text.find(README_BEGIN), text.find(README_END)
    if begin < 0 or end < begin:
        return None
    return text[: begin + len(README_BEGIN)], text[begin + len(README_BEGIN) : end], text[end:]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("action", choices=["check", "write-readme"])
    parser.add_argument("--root", type=pathlib.Path, default=pathlib.Path(__file__).resolve().parent.parent)
    opts = parser.parse_args()
    errors = []
    lists = {rel: read_list(opts.root, rel, macros, errors) for rel, macros in LISTS.items()}
    for rel, rows in lists.items():
        check_unique(rel, rows, errors)
    counters = lists[COUNTER_LIST]
    table = "\n" + readme_table(counters) + "\n"
    parts = readme_parts(opts.root)
    if parts is None:
        errors.append(f"README.md: no counter table between {README_BEGIN} and {README_END}")
    elif opts.action == "write-readme":
        (opts.root / "README.md").write_text(parts[0] + table + parts[2])
    elif parts[1] != table:
        errors.append("README.md: the counter table differs from the list; run scripts/counter_list.py write-readme")
    if opts.action == "check":
        scan_program(opts.root, counters, errors)
    for e in errors:
        print(e, file=sys.stderr)
    total = sum(len(rows) for rows in lists.values())
    print(f"counter_list: {len(lists)} lists, {total} rows, {len(errors)} problems")
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
