// Makes system calls of this process fail from now on, permanently. Use it in a child.
#pragma once

#include <linux/filter.h>
#include <stddef.h>

namespace test {

// False when this machine does not allow it.
bool add_filter(sock_filter* program, size_t size);

// The call fails for all arguments.
bool fail_call(long call, int error);
// The call ends the process as a kill does.
bool end_at_call(long call);
// The call fails only with these flags as its third argument.
bool fail_call_with_flags(long call, int flags, int error);

}  // namespace test
