#include <platform/hf/resource/BaseMsgID.hpp>

#include <platform/hf/i18n/Conversion.hpp>

#include <stdexcept>
#include <utility>

namespace hf {
namespace resource {

BaseMsgID::BaseMsgID(std::string catalogName, std::string key, std::size_t argCount)
    : catalogName_(std::move(catalogName)), key_(std::move(key)), args_(argCount) {}

BaseMsgID::~BaseMsgID() = default;

void BaseMsgID::setArg(std::size_t index, const std::wstring& value) {
    if (index >= args_.size()) {
        throw std::out_of_range("message " + key_ + " has " + std::to_string(args_.size()) +
                                " arguments; index " + std::to_string(index) + " given");
    }
    args_[index] = value;
}

void BaseMsgID::setArg(std::size_t index, const std::string& value) {
    setArg(index, hf::i18n::to_ustring(value));
}

void BaseMsgID::setArg(std::size_t index, const wchar_t* value) {
    setArg(index, std::wstring(value ? value : L""));
}

void BaseMsgID::setArg(std::size_t index, const char* value) {
    setArg(index, std::string(value ? value : ""));
}

}  // namespace resource
}  // namespace hf
