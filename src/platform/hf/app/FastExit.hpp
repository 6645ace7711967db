// hf::app::fast_exit: ends the process at once with an exit code, running no exit handlers,
// no static destructors and no stream flushes.
#pragma once

namespace hf {
namespace app {

[[noreturn]] void fast_exit(int code);

}  // namespace app
}  // namespace hf
