#include <platform/hf/i18n/detail/MessageText.hpp>

#include <platform/hf/i18n/Conversion.hpp>

#include <limits>

namespace hf {
namespace i18n {
namespace detail {

std::wstring fillPlaceholders(const std::wstring& text, const std::vector<std::wstring>& args) {
    std::wstring result;
    result.reserve(text.size());
    std::size_t pos = 0;
    while (pos < text.size()) {
        const std::size_t open = text.find(L'{', pos);
        if (open == std::wstring::npos) {
            break;
        }
        result.append(text, pos, open - pos);
        // Digits then '}'; the index saturates so that a huge number simply has no argument.
        std::size_t end = open + 1;
        std::size_t index = 0;
        while (end < text.size() && text[end] >= L'0' && text[end] <= L'9') {
            const std::size_t digit = static_cast<std::size_t>(text[end] - L'0');
            index = index > (std::numeric_limits<std::size_t>::max() - digit) / 10
                        ? std::numeric_limits<std::size_t>::max()
                        : index * 10 + digit;
            ++end;
        }
        if (end > open + 1 && end < text.size() && text[end] == L'}' && index < args.size()) {
            result += args[index];
            pos = end + 1;
        } else {
            result += L'{';
            pos = open + 1;
        }
    }
    if (pos < text.size()) {
        result.append(text, pos, std::wstring::npos);
    }
    return result;
}

std::wstring fallbackText(const hf::resource::BaseMsgID& id) {
    std::wstring text = to_ustring(id.getCatalogName() + ":" + id.getKey()) + L"(";
    const std::vector<std::wstring>& args = id.getArgs();
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (i > 0) {
            text += L", ";
        }
        text += args[i];
    }
    return text + L")";
}

}  // namespace detail
}  // namespace i18n
}  // namespace hf
