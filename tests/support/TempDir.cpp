#include <support/TempDir.hpp>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include <unistd.h>

namespace testsupport {

TempDir::TempDir() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "settingscore-test-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) {
        throw std::runtime_error("mkdtemp failed for " + pattern);
    }
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::filesystem::path writeFile(const std::filesystem::path& file, const std::string& content) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out << content;
    if (!out.flush()) {
        throw std::runtime_error("cannot write " + file.string());
    }
    return file;
}

std::string readFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        throw std::runtime_error("cannot read " + file.string());
    }
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

}  // namespace testsupport
