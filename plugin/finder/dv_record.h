// Apple Event records. A library function: nothing calls it.
#pragma once

#include <stdint.h>

#include <Carbon/Carbon.h>

// A new record with the name ("pnam", left out when it is not UTF-8) and the number ("cmcd"); null
// on failure. The caller disposes of the descriptor and frees it. Main thread.
AERecord* dv_make_AE_record(int32_t number, const char* name);
