#include "hosts/operations/failing_calls.h"

#include <linux/audit.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>

namespace test {

bool add_filter(sock_filter* program, size_t size) {
    sock_fprog filter = {static_cast<unsigned short>(size), program};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

namespace {

bool answer_call(long call, unsigned answer) {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, answer),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    return add_filter(program, sizeof program / sizeof program[0]);
}

}  // namespace

bool fail_call(long call, int error) {
    return answer_call(call, SECCOMP_RET_ERRNO | static_cast<unsigned>(error));
}

bool end_at_call(long call) { return answer_call(call, SECCOMP_RET_KILL_PROCESS); }

bool fail_call_with_flags(long call, int flags, int error) {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[2])),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(flags), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(error)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    return add_filter(program, sizeof program / sizeof program[0]);
}

}  // namespace test
