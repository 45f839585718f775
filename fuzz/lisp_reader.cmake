# SPDX-License-Identifier: GPL-3.0-or-later
tarnel_fuzz(lisp_reader SOURCES lisp_reader.cpp LIBRARIES dh_lisp)
