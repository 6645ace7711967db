#include <platform/hf/app/FastExit.hpp>

#include <cstdlib>

namespace hf {
namespace app {

void fast_exit(int code) {
    std::_Exit(code);
}

}  // namespace app
}  // namespace hf
