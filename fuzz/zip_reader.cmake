tarnel_fuzz(zip_reader SOURCES zip_reader.cpp LIBRARIES tnl_zip)
