#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The same work as ZoomSave by ezdxf, in one process; it syncs nothing. Arguments: output folder, files, folders."""
import os
import sys
import time

import ezdxf
from ezdxf import zoom

files = []
for argument in sys.argv[2:]:
    if os.path.isdir(argument):
        for folder, _, names in os.walk(argument):
            files += [os.path.join(folder, n) for n in names if n.lower().endswith(".dxf")]
    else:
        files.append(argument)
os.makedirs(sys.argv[1], exist_ok=True)
start = time.perf_counter()
size = failed = 0
for number, path in enumerate(files):
    try:
        drawing = ezdxf.readfile(path)
        zoom.extents(drawing.modelspace())
        drawing.saveas(f"{sys.argv[1]}/{number}.dxf")
        size += os.path.getsize(path)
    except Exception as error:  # count and go on: some files are beyond it
        failed += 1
        print(path, error, file=sys.stderr)
print(f"ezdxf: {len(files)} files ({failed} failed), {size / 1e6:.1f} MB, {time.perf_counter() - start:.3f} s")
