# SPDX-License-Identifier: GPL-3.0-or-later
add_library(tnl_zip STATIC ZipException.cpp FileHeader.cpp OemNames.cpp ZipStorage.cpp CentralDir.cpp
            ZipInternalInfo.cpp ZipArchive.cpp)
target_include_directories(tnl_zip PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(tnl_zip PUBLIC tnl_system ZLIB::ZLIB PRIVATE ICU::uc)
set_target_properties(tnl_zip PROPERTIES AUTOMOC OFF)
