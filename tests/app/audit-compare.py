#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Audits drawings before and after a run with ezdxf, and tells what is wrong only afterwards.

usage: audit-compare.py ORIGINALS SAVED...

All are folders of the same shape. Exit status 1 when a saved drawing cannot be read though its original
can, or when it has an audit error that its original has not. Errors are compared by their code and count,
since ezdxf's messages name handles that a repair may shift.
"""
import collections
import logging
import multiprocessing
import pathlib
import sys

import ezdxf
from ezdxf import recover

logging.disable(logging.CRITICAL)


def errors(path):
    """Audit errors of a drawing by code; None when ezdxf cannot read it at all."""
    try:
        document = ezdxf.readfile(path)
        auditor = document.audit()
    except (ezdxf.DXFError, UnicodeError, ValueError):
        try:
            _, auditor = recover.readfile(path)
        except Exception:  # whatever the library meets in a broken file: it cannot read it
            return None
    except Exception:
        return None
    return collections.Counter(str(entry.code) for entry in auditor.errors + auditor.fixes)


def compare(paths):
    """None when ezdxf cannot read the original, else a line for each saved drawing that is worse."""
    before = errors(paths[0])
    if before is None:
        return None
    lines = []
    for path in paths[1:]:
        after = errors(path) if path.exists() else None
        if after is None:
            lines.append(f"{path}: cannot be read any more")
        elif after - before:
            lines.append(f"{path}: {dict(after - before)}")
    return lines


def main():
    if len(sys.argv) < 3:
        print(__doc__, file=sys.stderr)
        return 2
    originals, *saved = (pathlib.Path(argument) for argument in sys.argv[1:])
    jobs = [[path] + [folder / path.relative_to(originals) for folder in saved]
            for path in sorted(originals.rglob("*")) if path.suffix.lower() == ".dxf"]
    with multiprocessing.Pool() as pool:
        found = pool.map(compare, jobs, chunksize=8)
    worse = [line for lines in found for line in lines or []]
    for line in worse:
        print(line)
    unreadable = found.count(None)
    print(f"{len(jobs) - unreadable} drawings compared, {unreadable} that ezdxf cannot read before, "
          f"{len(worse)} worse after")
    return 1 if worse else 0


if __name__ == "__main__":
    sys.exit(main())
