// An empty source: the target vrx_test_headers exists for its precompiled header.
