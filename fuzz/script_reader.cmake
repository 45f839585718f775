# SPDX-License-Identifier: GPL-3.0-or-later
tarnel_fuzz(script_reader SOURCES script_reader.cpp LIBRARIES dh_editor)
