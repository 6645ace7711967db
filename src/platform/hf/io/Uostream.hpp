// hf::io::uostream: the host's output string stream of wide text.
#pragma once

#include <sstream>

namespace hf {
namespace io {

using uostream = std::wostringstream;

}  // namespace io
}  // namespace hf
