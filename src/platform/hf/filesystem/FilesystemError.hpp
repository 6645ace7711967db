// The failures of hf::filesystem: FsysExceptionBase carries the operation, the path or paths
// and the system error; FileExistsError and AccessDenied single out the two causes callers
// act on. Each keeps its exact class across a boost::exception_ptr.
#pragma once

#include <platform/hf/except/Exception.hpp>
#include <platform/hf/filesystem/Path.hpp>

#include <string>
#include <system_error>

namespace hf {
namespace filesystem {

class FsysExceptionBase
    : public hf::except::Exception<hf::except::IInternalException, std::exception, void> {
public:
    FsysExceptionBase(std::string operation, upath path, std::error_code code);
    FsysExceptionBase(std::string operation, upath path1, upath path2, std::error_code code);

    // "<operation> failed for "<path1>"[ and "<path2>"]: <system message>"
    const char* what() const noexcept override;

    const std::string& operation() const noexcept { return operation_; }
    const upath& path1() const noexcept { return path1_; }
    const upath& path2() const noexcept { return path2_; }  // empty for one-path operations
    const std::error_code& code() const noexcept { return code_; }

    const boost::exception_detail::clone_base* clone() const override;
    void rethrow() const override;

private:
    std::string operation_;
    upath path1_;
    upath path2_;
    std::error_code code_;
    std::string what_;
};

// The target of a creation or copy is there already.
class FileExistsError : public FsysExceptionBase {
public:
    using FsysExceptionBase::FsysExceptionBase;
    const boost::exception_detail::clone_base* clone() const override;
    void rethrow() const override;
};

// The system refused the operation for want of permission, or on a read-only file system.
class AccessDenied : public FsysExceptionBase {
public:
    using FsysExceptionBase::FsysExceptionBase;
    const boost::exception_detail::clone_base* clone() const override;
    void rethrow() const override;
};

}  // namespace filesystem
}  // namespace hf
