// The platform window layer; see platform/include/lbwin.h.
