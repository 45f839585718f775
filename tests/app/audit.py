#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Exits with the number of drawings of a folder in which ezdxf's audit finds errors, and tells of each."""
import os
import sys

import ezdxf

bad = 0
for name in sorted(os.listdir(sys.argv[1])):
    try:
        errors = [error.message for error in ezdxf.readfile(os.path.join(sys.argv[1], name)).audit().errors]
    except (OSError, ezdxf.DXFError) as failure:
        errors = [repr(failure)]
    if errors:
        bad += 1
        print(name, errors)
sys.exit(min(bad, 100))
