#!/usr/bin/env python3
"""Writes the README's table of handler rows from the handler lists, or checks it.

The rows come from platform/shared/handlers.def, tail_functions.def and
feature_steps.def (state of each handler) and from platform/varn/ing_handlers.def
and nph_handlers.def (which vector or fabric header type reaches it). The table
stands in README.md between the two marker lines below.

Usage: handler_status.py [--check] [REPO_ROOT]
  without --check: rewrites the table in README.md
  with --check: exits 1 if README.md's table differs from the lists
"""
import pathlib
import re
import sys

BEGIN = "<!-- handler rows: written by scripts/handler_status.py from the handler lists -->"
END = "<!-- end of handler rows -->"
STATUS = {"BUILT": "built", "PLACEHOLDER": "not built"}


def rows_of(path, macro):
    """The argument lists of the macro's rows in a list file, comments left out."""
    text = re.sub(r"//[^\n]*", "", path.read_text())
    rows = []
    for match in re.finditer(macro + r"\(", text):
        depth, start = 1, match.end()
        for i in range(start, len(text)):
            depth += {"(": 1, ")": -1}.get(text[i], 0)
            if depth == 0:
                break
        else:
            sys.exit(f"{path}: unclosed row of {macro}")
        rows.append([arg.strip() for arg in text[start:i].split(",")])
    return rows


def reached_by(root):
    """For each handler, the vectors and fabric header types whose rows name it."""
    entries = {}
    for file, macro, kind in (("ing_handlers.def", "ING_HANDLER", "vector"),
                              ("nph_handlers.def", "NPH_HANDLER", "fabric type")):
        keys = {}
        for key, handler in rows_of(root / "platform/varn" / file, macro):
            keys.setdefault(handler, []).append(f"`{key}`")
        for handler, names in keys.items():
            plural = "s" if len(names) > 1 else ""
            entries.setdefault(handler, []).append(f"{kind}{plural} " + ", ".join(names))
    return entries


def status(state, where):
    if state not in STATUS:
        sys.exit(f"{where}: state {state} is neither BUILT nor PLACEHOLDER")
    return STATUS[state]


def table(root):
    shared = root / "platform/shared"
    entries = reached_by(root)
    lines = ["| Handler | Reached by | Status |", "|---|---|---|"]
    for row in rows_of(shared / "handlers.def", "HANDLER"):
        name, state = row[0], row[1]
        by = ", ".join(entries.get(name, ["a call by name"]))
        lines.append(f"| `{name}` | {by} | {status(state, name)} |")
    for file, macro, kind in (("tail_functions.def", "TAIL_FUNCTION", "tail processing"),
                              ("feature_steps.def", "FEATURE_STEP", "a step of a drop path")):
        for name, state in rows_of(shared / file, macro):
            lines.append(f"| `{name}` | {kind} | {status(state, name)} |")
    return "\n".join(lines) + "\n"


def main(argv):
    check = "--check" in argv
    args = [a for a in argv if a != "--check"]
    root = pathlib.Path(args[0] if args else pathlib.Path(__file__).resolve().parent.parent)
    readme = root / "README.md"
    text = readme.read_text()
    if BEGIN not in text or END not in text:
        sys.exit(f"{readme}: the marker lines of the handler table are missing")
    head, rest = text.split(BEGIN + "\n", 1)
    current, tail = rest.split(END, 1)
    wanted = table(root)
    if not check:
        readme.write_text(head + BEGIN + "\n" + wanted + END + tail)
        return 0
    if current != wanted:
        print(f"{readme}: the handler table differs from the handler lists; "
              "run scripts/handler_status.py to rewrite it", file=sys.stderr)
        for line in sorted(set(wanted.splitlines()) ^ set(current.splitlines())):
            print(("  want: " if line in wanted.splitlines() else "  have: ") + line, file=sys.stderr)
        return 1
    print("README handler table matches the handler lists")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
