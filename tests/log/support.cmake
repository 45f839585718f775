# SPDX-License-Identifier: GPL-3.0-or-later
tarnel_add_test(support_tests
  SOURCES SupportTest.cpp
  LIBRARIES tnl_support recording_host GTest::gmock_main)
