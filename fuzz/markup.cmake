tarnel_fuzz(markup SOURCES markup.cpp LIBRARIES tnl_state)
