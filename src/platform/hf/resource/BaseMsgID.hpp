// hf::resource::BaseMsgID: the identity of one catalogue message (catalogue name, key) with
// the arguments that fill its placeholders, by position.
#pragma once

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

namespace hf {
namespace resource {

class BaseMsgID {
public:
    // A message with `argCount` arguments, all empty until set.
    BaseMsgID(std::string catalogName, std::string key, std::size_t argCount);
    virtual ~BaseMsgID();
    BaseMsgID(const BaseMsgID&) = default;
    BaseMsgID& operator=(const BaseMsgID&) = default;

    const std::string& getCatalogName() const { return catalogName_; }
    const std::string& getKey() const { return key_; }
    std::size_t getArgCount() const { return args_.size(); }
    const std::vector<std::wstring>& getArgs() const { return args_; }

    // Sets argument `index` (0-based). Narrow text is UTF-8. An index outside the fixed
    // number of arguments throws std::out_of_range: the count is part of the message.
    void setArg(std::size_t index, const std::wstring& value);
    void setArg(std::size_t index, const std::string& value);
    void setArg(std::size_t index, const wchar_t* value);
    void setArg(std::size_t index, const char* value);
    template <class N, class = std::enable_if_t<std::is_arithmetic<N>::value>>
    void setArg(std::size_t index, N value) {
        setArg(index, std::to_wstring(value));
    }

private:
    std::string catalogName_;
    std::string key_;
    std::vector<std::wstring> args_;
};

}  // namespace resource
}  // namespace hf
