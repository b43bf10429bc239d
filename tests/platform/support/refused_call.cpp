#include "tests/platform/support/refused_call.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <system_error>
#include <thread>

#include <gtest/gtest.h>

namespace tallowcrest {

bool refuseCall(std::uint32_t call, int error) {
    const auto answer = SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(error);
    std::array<sock_filter, 4> filter{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_RET | BPF_K, answer),
    }};
    sock_fprog program{filter.size(), filter.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

bool runWithoutThreads(const std::function<void()>& work) {
    bool mayRefuse = false;
    std::thread([&] {
        mayRefuse = refuseCall(SYS_clone3, EAGAIN) && refuseCall(SYS_clone, EAGAIN);
        if (mayRefuse) {
            EXPECT_THROW(std::thread([] {}).join(), std::system_error);
            work();
        }
    }).join();
    return mayRefuse;
}

}  // namespace tallowcrest
