// Work run in a forked child of the test program with its CPU time and its growth in peak
// resident memory measured there, so that neither the parent's memory nor an earlier case
// hides a blow-up, and a hang or a crash shows as such instead of stopping the whole program.
#pragma once

#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>

namespace hostiletest {

#if defined(__SANITIZE_ADDRESS__)
#define HOSTILETEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HOSTILETEST_SANITIZED 1
#endif
#endif

// The limits every hostile case must keep: CPU time of the work and growth of the child's
// peak resident memory. The instrumented build runs several times slower, so only the time
// is relaxed there.
#ifdef HOSTILETEST_SANITIZED
constexpr double cpuLimitMs = 1000.0;
#else
constexpr double cpuLimitMs = 100.0;
#endif
constexpr long memoryLimitKiB = 64 * 1024;

// What the work reports, with what the child measured around it.
struct ChildReport {
    enum class Kind { Returned, Threw, Crashed, Hung };
    Kind kind = Kind::Crashed;
    std::string text;  // the work's own account: a failure's class, code and text, say
    double cpuMs = 0;
    long memoryGrowthKiB = 0;
};

inline const char* kindName(ChildReport::Kind kind) {
    switch (kind) {
        case ChildReport::Kind::Returned:
            return "returned";
        case ChildReport::Kind::Threw:
            return "threw";
        case ChildReport::Kind::Crashed:
            return "crashed";
        case ChildReport::Kind::Hung:
            return "hung";
    }
    return "?";
}

namespace detail {

inline double processCpuMs() {
    timespec now{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

inline long peakResidentKiB() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

inline void writeAll(int fd, const void* data, std::size_t size) {
    const char* bytes = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = ::write(fd, bytes, size);
        if (written <= 0) {
            return;
        }
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
}

// Reads until `size` bytes came, the writer closed, or the deadline passed; the bytes read.
inline std::size_t readAll(int fd, void* data, std::size_t size,
                           std::chrono::steady_clock::time_point deadline) {
    char* bytes = static_cast<char*>(data);
    std::size_t got = 0;
    while (got < size) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            break;
        }
        pollfd watch{fd, POLLIN, 0};
        if (::poll(&watch, 1, static_cast<int>(left.count())) <= 0) {
            continue;  // woken or timed out: the loop checks the deadline
        }
        const ssize_t read = ::read(fd, bytes + got, size - got);
        if (read <= 0) {
            break;
        }
        got += static_cast<std::size_t>(read);
    }
    return got;
}

struct Header {
    int kind;
    double cpuMs;
    long memoryGrowthKiB;
    std::uint32_t textLength;
};

}  // namespace detail

// Runs `work` in a child process. `work` returns its account of what happened and throws
// only for a surprise (reported as Threw with the exception's text). The child is killed and
// the report says Hung when nothing came back within `patience`.
inline ChildReport runMeasuredInChild(const std::function<std::string()>& work,
                                      std::chrono::seconds patience = std::chrono::seconds(60)) {
    int channel[2];
    if (::pipe(channel) != 0) {
        return ChildReport{ChildReport::Kind::Crashed, "pipe failed", 0, 0};
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(channel[0]);
        detail::Header header{static_cast<int>(ChildReport::Kind::Returned), 0, 0, 0};
        std::string text;
        const long memoryBefore = detail::peakResidentKiB();
        const double cpuBefore = detail::processCpuMs();
        try {
            text = work();
        } catch (const std::exception& e) {
            header.kind = static_cast<int>(ChildReport::Kind::Threw);
            text = e.what();
        } catch (...) {
            header.kind = static_cast<int>(ChildReport::Kind::Threw);
            text = "an exception of unknown type";
        }
        header.cpuMs = detail::processCpuMs() - cpuBefore;
        header.memoryGrowthKiB = detail::peakResidentKiB() - memoryBefore;
        header.textLength = static_cast<std::uint32_t>(text.size());
        detail::writeAll(channel[1], &header, sizeof header);
        detail::writeAll(channel[1], text.data(), text.size());
        // No exit handlers, no destructors of the parent's objects, no leak report: the
        // child is a copy of the parent and owns none of it.
        ::_exit(0);
    }
    ::close(channel[1]);
    ChildReport report;
    if (child < 0) {
        ::close(channel[0]);
        report.text = "fork failed";
        return report;
    }
    const auto deadline = std::chrono::steady_clock::now() + patience;
    detail::Header header{};
    const bool gotHeader =
        detail::readAll(channel[0], &header, sizeof header, deadline) == sizeof header;
    if (gotHeader) {
        report.kind = static_cast<ChildReport::Kind>(header.kind);
        report.cpuMs = header.cpuMs;
        report.memoryGrowthKiB = header.memoryGrowthKiB;
        report.text.resize(header.textLength);
        report.text.resize(detail::readAll(channel[0], report.text.data(), header.textLength,
                                           deadline + std::chrono::seconds(5)));
    } else if (std::chrono::steady_clock::now() >= deadline) {
        report.kind = ChildReport::Kind::Hung;
        ::kill(child, SIGKILL);
    }
    ::close(channel[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!gotHeader && report.kind != ChildReport::Kind::Hung) {
        report.kind = ChildReport::Kind::Crashed;
        report.text = WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                                          : "exit status " + std::to_string(WEXITSTATUS(status));
    }
    return report;
}

}  // namespace hostiletest
