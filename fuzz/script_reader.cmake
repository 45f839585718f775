tarnel_fuzz(script_reader SOURCES script_reader.cpp LIBRARIES dh_editor)
