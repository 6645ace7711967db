#include <settingscore/core/xml/SettingsSaxHandler.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/xml/XMLSettings.hpp>
#include <settingscore/core/xml/detail/XmlText.hpp>

#include <platform/hf/except/IException.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>

#include <xercesc/sax/SAXException.hpp>

#include <utility>

namespace settings {
namespace core {

namespace {

// The document elements: one row, built at library start.
const XMLNode::ChildFactories documentElementFactories{
    {"settings", &XMLNode::make<XMLTopSettingsNode>},
};

[[noreturn]] void throwSaxException(const std::wstring& message) {
    throw xercesc::SAXException(detail::toUtf16Buffer(message).get());
}

[[noreturn]] void throwSaxException(const std::string& message) {
    throw xercesc::SAXException(detail::toUtf16Buffer(message).get());
}

// Runs one callback's work; a message failure leaves as a SAXException with its catalogue text.
template <class Work>
void guarded(Work&& work) {
    try {
        work();
    } catch (const hf::except::IMsgIDException& failure) {
        throwSaxException(hf::i18n::MessageCatalog::get_message(failure.get_message_id(),
                                                                hf::i18n::HfLocale::global()));
    }
}

}  // namespace

SettingsSaxHandler::SettingsSaxHandler() = default;

SettingsSaxHandler::~SettingsSaxHandler() = default;

void SettingsSaxHandler::startDocument() {
    stack_.clear();
    textLength_ = 0;
}

void SettingsSaxHandler::startElement(const XMLCh* const, const XMLCh* const localName,
                                      const XMLCh* const, const xercesc::Attributes& attributes) {
    if (stack_.size() >= maxDepth) {
        throwSaxException("Elements nested deeper than " + std::to_string(maxDepth) + " levels");
    }
    textLength_ = 0;
    guarded([&] {
        const std::string tag = detail::toNarrowText(localName);
        boost::shared_ptr<XMLNode> created;
        if (stack_.empty()) {
            const auto factory = documentElementFactories.find(tag);
            if (factory == documentElementFactories.end()) {
                throwSaxException(
                    "Illegal tag encountered at the beginning of the Settings XMLfile");
            }
            created = factory->second(attributes, nullptr);
            created->buildLock_ = &buildLock_.get();
            created->pool_ = &elementPool_;
        } else {
            created = stack_.back()->createChild(tag, attributes);
        }
        stack_.push_back(std::move(created));
    });
}

void SettingsSaxHandler::endElement(const XMLCh* const, const XMLCh* const localName,
                                    const XMLCh* const) {
    textLength_ = 0;
    guarded([&] {
        if (stack_.empty() || !detail::equalsText(localName, stack_.back()->getTagName())) {
            throwSaxException("Mismatch in tag hierarchy between parser and node stack");
        }
        const boost::shared_ptr<XMLNode> closed = std::move(stack_.back());
        stack_.pop_back();
        if (stack_.empty()) {
            // The document element: its node is the product node of the tree. Its finish is
            // not called, since it has no parent to hang below.
            result_ = closed->getSettings();
            if (const auto top = boost::dynamic_pointer_cast<XMLTopSettingsNode>(closed)) {
                const auto& paths = top->getAdditionalPaths();
                additionalPaths_.insert(additionalPaths_.end(), paths.begin(), paths.end());
            }
        } else {
            closed->finish();
        }
    });
}

void SettingsSaxHandler::characters(const XMLCh* const chars, const XMLSize_t length) {
    textLength_ += length;
    if (textLength_ > maxTextLength) {
        throwSaxException("Element texts longer than " + std::to_string(maxTextLength) +
                          " characters");
    }
    guarded([&] {
        if (!stack_.empty()) {
            detail::assignWideText(text_, chars, length);
            stack_.back()->setText(text_);
        }
    });
}

void SettingsSaxHandler::startDTD(const XMLCh* const, const XMLCh* const, const XMLCh* const) {
    throwSaxException("Settings files have no document type declaration");
}

bool SettingsSaxHandler::popAdditionalPath(std::wstring& path) {
    if (additionalPaths_.empty()) {
        return false;
    }
    path = std::move(additionalPaths_.back());
    additionalPaths_.pop_back();
    return true;
}

}  // namespace core
}  // namespace settings
