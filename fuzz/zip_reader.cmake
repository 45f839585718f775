# SPDX-License-Identifier: GPL-3.0-or-later
tarnel_fuzz(zip_reader SOURCES zip_reader.cpp LIBRARIES tnl_zip)
