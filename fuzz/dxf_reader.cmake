# SPDX-License-Identifier: GPL-3.0-or-later
tarnel_fuzz(dxf_reader SOURCES dxf_reader.cpp LIBRARIES dh_drawing)
