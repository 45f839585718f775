# SPDX-License-Identifier: GPL-3.0-or-later
# PackSupportBundle and SupportInfoText need no host; what asks the record and the host lies in files of its own.
add_library(tnl_support STATIC MapiSession.cpp SupportInfo.cpp CollectSupportInfo.cpp SupportBundle.cpp
            BuildSupportBundle.cpp)
target_include_directories(tnl_support PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(tnl_support PUBLIC tnl_engine tnl_state tnl_zip Qt6::Core)
set_target_properties(tnl_support PROPERTIES AUTOMOC OFF)
