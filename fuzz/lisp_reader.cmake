tarnel_fuzz(lisp_reader SOURCES lisp_reader.cpp LIBRARIES dh_lisp)
