// hf::i18n::MessageCatalog turns a message identity into its text, from the catalogue files
// below the installation root; hf::i18n::HfLocale names the locale a text is wanted in.
#pragma once

#include <platform/hf/resource/BaseMsgID.hpp>

#include <string>

namespace hf {
namespace i18n {

class HfLocale {
public:
    explicit HfLocale(std::string name);
    const std::string& name() const { return name_; }

    // The process-wide locale of the host.
    static const HfLocale& global();

private:
    std::string name_;
};

class MessageCatalog {
public:
    // The text of `id`: the catalogue entry for its key with {0}, {1}, ... replaced by the
    // arguments in order. A catalogue or key that cannot be found gives the catalogue name,
    // the key and the arguments instead; this never throws for a missing entry.
    static std::wstring get_message(const hf::resource::BaseMsgID& id, const HfLocale& locale);
};

}  // namespace i18n
}  // namespace hf
