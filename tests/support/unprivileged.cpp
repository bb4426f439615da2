#include "support/unprivileged.h"

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace test {

namespace {

const uint32_t overrides = 1u << CAP_DAC_OVERRIDE | 1u << CAP_DAC_READ_SEARCH;

void change(uint32_t set[2], bool take) {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2] = {};
    if (syscall(SYS_capget, &header, data) != 0) return;
    if (take) {
        set[0] = data[0].effective;
        set[1] = data[1].effective;
        data[0].effective &= ~overrides;
    } else {
        data[0].effective = set[0];
        data[1].effective = set[1];
    }
    syscall(SYS_capset, &header, data);
}

}  // namespace

Unprivileged::Unprivileged() : effective_{} { change(effective_, true); }
Unprivileged::~Unprivileged() { change(effective_, false); }

}  // namespace test
