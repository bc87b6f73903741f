#!/usr/bin/env python3
"""Checks every #include "..." of the tracked sources against the layer table
of docs/architecture.md (section "Layers and include edges").

Each table row names a layer, the folders or files that belong to it (the
longest match wins) and the layers it may include. An include is resolved as
the compiler would: beside the including file, then under each include root.
An include that resolves to no tracked file (a generated or system header)
is placed by its path alone. Prints every forbidden edge; exits 1 if any.

Usage: check_includes.py [REPO_TOP]
"""
import os.path
import re
import subprocess
import sys
from pathlib import Path

SECTION = "## Layers and include edges"
SOURCE_SUFFIXES = (".h", ".hpp", ".cpp", ".cc", ".def", ".inc")
# Include roots besides the repository top: the shared layer's folders and
# the roots that tests and the generator's tests put on their path.
INCLUDE_ROOTS = ("", "include", "protocols/include", "npu/zephra/include", "platform/varn/include", "tests",
                 "tools/gen_lookups")
INCLUDE_LINE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')
ANY = "anything"


def read_table(top):
    """The rows of the layer table: {layer: (members, allowed, excluded)}."""
    text = (top / "docs" / "architecture.md").read_text()
    if SECTION not in text:
        sys.exit(f"check_includes: docs/architecture.md has no section '{SECTION}'")
    rows = {}
    for line in text.split(SECTION, 1)[1].splitlines()[1:]:
        if line.startswith("## "):
            break
        cells = [c.strip() for c in line.strip().strip("|").split("|")]
        if len(cells) != 3 or cells[0] in ("layer", "") or set(cells[0]) <= set("-: "):
            continue
        layer = cells[0].strip("`")
        members = [m.strip().strip("`") for m in cells[1].split(",") if m.strip()]
        allowed, excluded = parse_allowed(cells[2])
        rows[layer] = (members, allowed, excluded)
    if not rows:
        sys.exit("check_includes: the layer table is empty")
    return rows


def parse_allowed(cell):
    """'program, shared' or 'anything but tests, bench'."""
    names = [n.strip().strip("`") for n in cell.replace(" but ", ",").split(",") if n.strip()]
    if names and names[0] == ANY:
        return {ANY}, set(names[1:])
    return set(names), set()


def layer_of(path, members):
    """The layer whose longest member is a prefix of path, or None."""
    best, best_len = None, -1
    for layer, prefixes in members.items():
        for prefix in prefixes:
            folder = prefix.endswith("/")
            if (path.startswith(prefix) if folder else path == prefix) and len(prefix) > best_len:
                best, best_len = layer, len(prefix)
    return best


def resolve(including, name, tracked):
    """The tracked file an include names, or the name itself."""
    candidates = [os.path.join(os.path.dirname(including), name)] + [os.path.join(r, name) for r in INCLUDE_ROOTS]
    for candidate in candidates:
        normal = os.path.normpath(candidate)
        if normal in tracked:
            return normal
    return os.path.normpath(name)


def main():
    top = Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
    rows = read_table(top)
    members = {layer: row[0] for layer, row in rows.items()}
    for layer, (_, allowed, excluded) in rows.items():
        for name in (allowed | excluded) - {ANY}:
            if name not in rows:
                sys.exit(f"check_includes: layer '{layer}' names '{name}', which is no layer of the table")
    tracked = set(subprocess.run(["git", "-C", str(top), "ls-files"], capture_output=True, text=True,
                                 check=True).stdout.split())
    broken = []
    checked = 0
    for path in sorted(p for p in tracked if p.endswith(SOURCE_SUFFIXES)):
        source = layer_of(path, members)
        if source is None:
            continue
        _, allowed, excluded = rows[source]
        for number, line in enumerate((top / path).read_text(errors="replace").splitlines(), 1):
            match = INCLUDE_LINE.match(line)
            if not match:
                continue
            target_path = resolve(path, match.group(1), tracked)
            target = layer_of(target_path, members)
            checked += 1
            if target is None or target == source:
                continue
            if (ANY in allowed and target not in excluded) or target in allowed:
                continue
            broken.append(f"{path}:{number}: {source} may not include {target} ({match.group(1)})")
    for b in broken:
        print(b)
    print(f"check_includes: {checked} includes checked, {len(broken)} forbidden")
    return 1 if broken else 0


if __name__ == "__main__":
    sys.exit(main())
