#include <platform/hf/except/IException.hpp>

namespace hf {
namespace except {

IException::~IException() = default;
IInternalException::~IInternalException() = default;
IUserException::~IUserException() = default;
IMsgIDException::~IMsgIDException() = default;

std::string IMsgIDException::get_error_id(const hf::resource::BaseMsgID& id) {
    return id.getCatalogName() + ":" + id.getKey();
}

}  // namespace except
}  // namespace hf
