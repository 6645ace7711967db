// Hostile settings files written straight to disk piece by piece (so that a big file never
// sits in the test's memory), and work run in a forked child with its CPU time and its growth
// in peak resident memory measured there, so that neither the parent's memory nor an earlier
// case hides a blow-up, and a hang or a crash shows as such instead of stopping the program.
#pragma once

#include "settingscore/core/xml/reading/ReadingFixture.hpp"

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace hostiletest {

namespace fs = std::filesystem;
namespace sc = settings::core;
using readingtest::ErrorReadingSettingsData;

#if defined(__SANITIZE_ADDRESS__)
#define HOSTILETEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HOSTILETEST_SANITIZED 1
#endif
#endif

// The limits of one parse. The instrumented build runs several times slower, and holds freed
// memory back for a while (files are read whole, so a load of several big files adds up there):
// both limits are relaxed there.
#ifdef HOSTILETEST_SANITIZED
constexpr double cpuLimitMs = 1000.0;
constexpr long memoryLimitKiB = 192 * 1024;
#else
constexpr double cpuLimitMs = 100.0;
constexpr long memoryLimitKiB = 64 * 1024;
#endif

constexpr char declaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr char settingsNamespace[] = " xmlns=\"urn:lindqvare.tolvan.settings\"";
const std::string noDoctype = "Settings files have no document type declaration";
const std::string tooDeep = "Elements nested deeper than 256 levels";
const std::string tooBig = "The file needs more than 16 MiB of parser memory";
const std::string tooLong = "Element texts longer than 1048576 characters";

// An internal subset whose "&lol9;" expands to a billion "lol"s, in under a kilobyte.
inline std::string billionLaughs() {
    std::string subset = "<!ENTITY lol0 \"lol\">\n";
    for (int level = 1; level <= 9; ++level) {
        subset += "<!ENTITY lol" + std::to_string(level) + " \"";
        for (int i = 0; i < 10; ++i) {
            subset += "&lol" + std::to_string(level - 1) + ";";
        }
        subset += "\">\n";
    }
    return subset;
}

// A text written `count` times.
struct Piece {
    Piece(const char* text, std::size_t count = 1) : text(text), count(count) {}
    Piece(std::string text, std::size_t count = 1) : text(std::move(text)), count(count) {}
    std::string text;
    std::size_t count;
};

// Writes `file` from its pieces, repeated ones in blocks of about 1 MiB; the path.
inline fs::path writePieces(const fs::path& file, const std::vector<Piece>& pieces) {
    fs::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    for (const Piece& piece : pieces) {
        const std::size_t perBlock = std::max<std::size_t>(1, (1u << 20) / piece.text.size());
        std::string block;
        for (std::size_t i = 0; i < std::min(perBlock, piece.count); ++i) {
            block += piece.text;
        }
        for (std::size_t left = piece.count, now; left > 0; left -= now) {
            now = std::min(perBlock, left);
            out.write(block.data(), static_cast<std::streamsize>(now * piece.text.size()));
        }
    }
    if (!out.flush()) {
        throw std::runtime_error("cannot write " + file.string());
    }
    return file;
}

// "parsed <product's child count>", or "code <n>: <detail text>" for the reader's failure.
inline std::string parseOutcome(sc::SettingsFileParser& parser, const fs::path& file) {
    try {
        const auto top = parser.parse(file.wstring());
        return "parsed " + std::to_string(top ? top->getChildren().size() : 0);
    } catch (const ErrorReadingSettingsData& failure) {
        return "code " + std::to_string(failure.getErrorCode()) + ": " +
               readingtest::detailText(failure);
    }
}

struct ChildReport {
    bool returned = false;  // else crashed, or hung and was killed
    std::string text;       // the work's own account, or how the child ended
    double cpuMs = 0;
    long memoryGrowthKiB = 0;
};

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

// Runs `work` in a child process and reports what it returned, or what it threw (prefixed
// "threw: "). A child that hangs is ended by an alarm after `patienceSeconds`.
inline ChildReport runMeasuredInChild(const std::function<std::string()>& work,
                                      unsigned patienceSeconds = 60) {
    int channel[2];
    if (::pipe(channel) != 0) {
        return {false, "pipe failed"};
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(channel[0]);
        ::alarm(patienceSeconds);
        const long memoryBefore = peakResidentKiB();
        const double cpuBefore = processCpuMs();
        std::string text;
        try {
            text = work();
        } catch (const std::exception& e) {
            text = std::string("threw: ") + e.what();
        }
        const std::string report = std::to_string(processCpuMs() - cpuBefore) + " " +
                                   std::to_string(peakResidentKiB() - memoryBefore) + "\n" + text;
        for (std::size_t done = 0; done < report.size();) {
            const ssize_t n = ::write(channel[1], report.data() + done, report.size() - done);
            done += n > 0 ? static_cast<std::size_t>(n) : report.size();
        }
        // No exit handlers, no destructors of the parent's objects, no leak report: the child
        // is a copy of the parent and owns none of it.
        ::_exit(0);
    }
    ::close(channel[1]);
    std::string report;
    char buffer[4096];
    for (ssize_t n; child > 0 && (n = ::read(channel[0], buffer, sizeof buffer)) > 0;) {
        report.append(buffer, static_cast<std::size_t>(n));
    }
    ::close(channel[0]);
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child) {
        return {false, "fork failed"};
    }
    if (!WIFEXITED(status) || report.find('\n') == std::string::npos) {
        return {false, WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM
                           ? "hung"
                           : "crashed with status " + std::to_string(status)};
    }
    ChildReport result{true, report.substr(report.find('\n') + 1)};
    std::istringstream(report) >> result.cpuMs >> result.memoryGrowthKiB;
    return result;
}

}  // namespace hostiletest
