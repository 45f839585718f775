#!/usr/bin/python3
"""Audits drawings before and after a run with ezdxf, and tells what is wrong only afterwards.

usage: audit-compare.py ORIGINALS SAVED

Both are folders of the same shape. Exit status 1 when a saved drawing cannot be read though its original
can, or when it has an audit error that its original has not. Errors are compared by their code and count,
since ezdxf's messages name handles that a repair may shift.
"""
import collections
import logging
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


def main():
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    originals, saved = (pathlib.Path(argument) for argument in sys.argv[1:])
    compared = unreadable = 0
    worse = []
    for before_path in sorted(originals.rglob("*")):
        if before_path.suffix.lower() != ".dxf":
            continue
        after_path = saved / before_path.relative_to(originals)
        before = errors(before_path)
        if before is None:
            unreadable += 1
            continue
        after = errors(after_path) if after_path.exists() else None
        compared += 1
        if after is None:
            worse.append(f"{after_path}: cannot be read any more")
        elif after - before:
            worse.append(f"{after_path}: {dict(after - before)}")
    for line in worse:
        print(line)
    print(f"{compared} drawings compared, {unreadable} that ezdxf cannot read before, {len(worse)} worse after")
    return 1 if worse else 0


if __name__ == "__main__":
    sys.exit(main())
