#include <platform/tvutil/contextmgr/ContextFactoryBase.hpp>

namespace tvutil {
namespace contextmgr {

ContextFactoryBase::~ContextFactoryBase() = default;

}  // namespace contextmgr
}  // namespace tvutil
