#include <platform/hf/filesystem/FilesystemError.hpp>

#include <utility>

namespace hf {
namespace filesystem {
namespace {

std::string describe(const std::string& operation, const upath& path1, const upath& path2,
                     const std::error_code& code) {
    std::string text = operation + " failed for \"" + path1.string() + "\"";
    if (!path2.empty()) {
        text += " and \"" + path2.string() + "\"";
    }
    return text + ": " + code.message();
}

}  // namespace

FsysExceptionBase::FsysExceptionBase(std::string operation, upath path, std::error_code code)
    : FsysExceptionBase(std::move(operation), std::move(path), upath(), code) {}

FsysExceptionBase::FsysExceptionBase(std::string operation, upath path1, upath path2,
                                     std::error_code code)
    : operation_(std::move(operation)),
      path1_(std::move(path1)),
      path2_(std::move(path2)),
      code_(code),
      what_(describe(operation_, path1_, path2_, code_)) {}

const char* FsysExceptionBase::what() const noexcept {
    return what_.c_str();
}

const boost::exception_detail::clone_base* FsysExceptionBase::clone() const {
    return new FsysExceptionBase(*this);
}
void FsysExceptionBase::rethrow() const {
    throw *this;
}

const boost::exception_detail::clone_base* FileExistsError::clone() const {
    return new FileExistsError(*this);
}
void FileExistsError::rethrow() const {
    throw *this;
}

const boost::exception_detail::clone_base* AccessDenied::clone() const {
    return new AccessDenied(*this);
}
void AccessDenied::rethrow() const {
    throw *this;
}

}  // namespace filesystem
}  // namespace hf
