// A plug-in that leaves the host's menu alone and says that it was entered.
#include <stdlib.h>

extern "C" __attribute__((visibility("default"))) int dv_load_delvio() {
    return setenv("PROBE_PLUG_IN", "entered", 1);
}
