// Runs part of a test in a forked child, for what cannot happen in the test process itself:
// ending the process, dropping root's privileges.
#pragma once

#include <functional>

#include <sys/wait.h>
#include <unistd.h>

namespace hftest {

// The exit status of `body` run in a child (its return value), or -1 if the child did not exit
// normally. The child leaves with _exit, so nothing of the parent's state runs twice.
inline int runInChild(const std::function<int()>& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        int code = 126;
        try {
            code = body();
        } catch (...) {
        }
        ::_exit(code);
    }
    int status = 0;
    const bool exited = child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status);
    return exited ? WEXITSTATUS(status) : -1;
}

// In a child: give up root for the unprivileged "nobody" account, so that permission bits
// apply. True when the process is (now) not root.
inline bool dropRootPrivileges() {
    return ::geteuid() != 0 || (::setgid(65534) == 0 && ::setuid(65534) == 0 && ::geteuid() != 0);
}

}  // namespace hftest
