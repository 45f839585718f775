tarnel_fuzz(dxf_reader SOURCES dxf_reader.cpp LIBRARIES dh_drawing)
