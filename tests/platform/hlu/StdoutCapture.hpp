// Sends standard output (descriptor 1, where the console goes) to a file of its own until
// text() is asked or the capture ends. For the storage tests, which check console warnings.
#pragma once

#include <support/TempDir.hpp>

#include <cstdio>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace hlutest {

class StdoutCapture {
public:
    StdoutCapture() {
        std::fflush(stdout);
        const int file = ::open(file_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ::dup2(file, STDOUT_FILENO);
        ::close(file);
    }
    ~StdoutCapture() { end(); }
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    // Ends the capture, so that test failures show again, and answers what reached the
    // descriptor: output still in a buffer of the C library does not count.
    std::string text() {
        end();
        return testsupport::readFile(file_);
    }

private:
    void end() {
        if (saved_ >= 0) {
            ::dup2(saved_, STDOUT_FILENO);
            ::close(saved_);
            saved_ = -1;
        }
    }

    testsupport::TempDir temp_;
    std::string file_ = (temp_.path() / "stdout").string();
    int saved_ = ::dup(STDOUT_FILENO);
};

}  // namespace hlutest
