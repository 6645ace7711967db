// A fresh folder under the system's temporary folder for one test, removed with everything in
// it when the guard goes out of scope.
#pragma once

#include <filesystem>
#include <string>

namespace testsupport {

class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::wstring wpath() const { return path_.wstring(); }
    // path() / relative, as wide text.
    std::wstring wpath(const std::string& relative) const { return (path_ / relative).wstring(); }

private:
    std::filesystem::path path_;
};

// Writes `content` to `file`, creating its folder; returns the path.
std::filesystem::path writeFile(const std::filesystem::path& file, const std::string& content);

// The whole content of `file`; throws std::runtime_error when it cannot be read.
std::string readFile(const std::filesystem::path& file);

}  // namespace testsupport
