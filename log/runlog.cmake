# SPDX-License-Identifier: GPL-3.0-or-later
# The text of the run log and its archive, without the record or a host: the module writes them, the front
# joins and mends them.
add_library(tnl_runlog STATIC HostLogArchive.cpp RunLogText.cpp)
target_include_directories(tnl_runlog PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(tnl_runlog PUBLIC tnl_markup tnl_zip Qt6::Core)
set_target_properties(tnl_runlog PROPERTIES AUTOMOC OFF)
