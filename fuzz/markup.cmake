# SPDX-License-Identifier: GPL-3.0-or-later
tarnel_fuzz(markup SOURCES markup.cpp LIBRARIES tnl_state)
