# SPDX-License-Identifier: GPL-3.0-or-later
# The logs write what the engine does and look at its record: they are part of its library.
target_sources(tnl_engine PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/NarrowFile.cpp
    ${CMAKE_CURRENT_LIST_DIR}/RunLog.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Trace.cpp)
target_link_libraries(tnl_engine PUBLIC tnl_runlog)
