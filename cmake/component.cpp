// Anchor of the component library: a symbol whose address locates the
// installed library's folder (where installation marker files live).
extern "C" const char* paratzorep_version() { return "0.1.0"; }
