// System calls that fail for this process from now on, for good: for a child.
#pragma once

#include <linux/filter.h>
#include <stddef.h>

namespace test {

// False when this machine allows it to nobody.
bool add_filter(sock_filter* program, size_t size);

// Whatever the arguments are.
bool fail_call(long call, int error);
// It ends the process as a kill does.
bool end_at_call(long call);
// Only with these flags as its third argument.
bool fail_call_with_flags(long call, int flags, int error);

}  // namespace test
