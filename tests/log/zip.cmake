# SPDX-License-Identifier: GPL-3.0-or-later
tarnel_add_test(zip_tests
  SOURCES ZipArchiveTest.cpp ZipLimitsTest.cpp ZipDamageTest.cpp ZipToolsTest.cpp
  LIBRARIES tnl_zip GTest::gmock_main)
