// SettingsImpl as settings file text: writeSettings and the walk behind it (NodeWriter).
//
// The walk repeats each ancestor's validator before every descendant that it opens; that
// repetition is part of the format. It is harmless: the reader installs every validator it
// meets on the element around it, so a group ends with its own validator, which comes last,
// or with its nearest ancestor's, which it would inherit anyway. Which opening tags are out is
// kept in the call's WriteContext, never in the nodes.
#include <settingscore/core/SettingsImpl.hpp>

#include <settingscore/core/detail/LockInstantiation.hpp>
#include <settingscore/core/storage/SettingsLevel.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>
#include <settingscore/core/xml/detail/NodeWriter.hpp>
#include <settingscore/core/xml/detail/SettingsFileText.hpp>
#include <settingscore/treestore/boostany/SupportedTypes.hpp>

#include <algorithm>
#include <shared_mutex>

namespace settings {
namespace core {

template <class Lock>
void SettingsImpl::writeSettings(const Lock& lock, std::ostream& out,
                                 const std::string& level) const {
    detail::requireTreeLock(lock);
    // The text is built in memory and goes to the stream in one piece.
    std::string text;
    detail::NodeWriter::writeDocument(lock, *this, level, text);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
}

#define SETTINGSCORE_INSTANTIATE_WRITING(Lock) \
    template void SettingsImpl::writeSettings(const Lock&, std::ostream&, const std::string&) const;
SETTINGSCORE_FOR_EACH_TREE_LOCK(SETTINGSCORE_INSTANTIATE_WRITING)
#undef SETTINGSCORE_INSTANTIATE_WRITING

namespace detail {

WriteContext::WriteContext(std::string& text, const std::string& writtenLevel)
    : out(text), level(writtenLevel) {
    if (!level.empty()) {
        bool after = false;
        for (const SettingsLevel& candidate : SettingsLevelManager::getSettingsLevelObjs()) {
            if (after) {
                laterLevels.push_back(candidate.levelName());
            }
            after = after || candidate.levelName() == level;
        }
    }
}

bool WriteContext::markOpen(const SettingsImpl* node) {
    if (std::find(openTags.begin(), openTags.end(), node) != openTags.end()) {
        return false;
    }
    openTags.push_back(node);
    return true;
}

bool WriteContext::markClosed(const SettingsImpl* node) {
    const auto found = std::find(openTags.begin(), openTags.end(), node);
    if (found == openTags.end()) {
        return false;
    }
    openTags.erase(found);
    return true;
}

void NodeWriter::writeDocument(const ReadAccess& lock, const SettingsImpl& node,
                               const std::string& level, std::string& out,
                               const HeldBackMap* heldBack) {
    requireTreeLock(lock);
    // No level means the effective stored values, as an export writes them.
    if (!level.empty()) {
        node.checkLevelKnown(level);
    }
    int depth = 0;  // the ancestors between this node and the root: 0 for a product node
    for (auto ancestor = node.getParentImpl(lock); ancestor && !ancestor->isRootImpl();
         ancestor = ancestor->getParentImpl(lock)) {
        ++depth;
    }
    WriteContext context(out, level);
    if (heldBack && !heldBack->empty()) {
        context.heldBack = heldBack;
        context.path = node.getFullName(lock);
    }
    writeTree(lock, node, context, depth);
    closeAncestors(lock, node, context, depth - 1);
}

void NodeWriter::writeTree(const ReadAccess& lock, const SettingsImpl& node, WriteContext& context,
                           int depth) {
    requireTreeLock(lock);
    openChain(lock, node, context, depth);
    RepeatedValidators repeated = repeatedValidatorsOf(lock, node, depth);
    writeBody(lock, node, context, depth, repeated);
}

// The walk below a node repeats what openChain would write for each child, without walking up
// from every child again: the ancestors' validators come from `repeated`, which grows by the
// node's own validator on the way down, and the ancestors are open already.
void NodeWriter::writeBody(const ReadAccess& lock, const SettingsImpl& node, WriteContext& context,
                           int depth, RepeatedValidators& repeated) {
    if (node.isKey_) {
        // The key's own validator goes with the level that alone defines the key.
        if (!context.level.empty() && !isHeldAfter(lock, node, context)) {
            writeFunctionElement(context.out, depth + 1, "validationfunc", node.validator_);
        }
        if (const ValueWriter writer = valueWriterOf(node)) {
            writer(context.out, node, lock, context.level, static_cast<unsigned>(depth + 1));
        }
    } else if (node.isRootImpl()) {
        // The root's children are document elements, each with a frame of its own.
        for (const bool keys : {true, false}) {
            for (const auto& child : node.children_) {
                if (child.second->isKey_ == keys) {
                    writeTree(lock, *child.second, context, depth + 1);
                }
            }
        }
    } else {
        const bool pushed = node.validator_.which() != 0;
        if (pushed) {
            repeated.emplace_back(&node.validator_, depth + 1);
        }
        // Keys first, then groups, each in the children's (byte) name order.
        for (const bool keys : {true, false}) {
            for (const auto& child : node.children_) {
                if (child.second->isKey_ != keys) {
                    continue;
                }
                const SettingsImpl* impl = child.second.get();
                const std::string::size_type pathLength = context.path.size();
                if (context.heldBack) {
                    context.path += '.';
                    context.path += child.first;
                    const auto held = context.heldBack->find(context.path);
                    if (held != context.heldBack->end() &&
                        holdsNothingAt(lock, *impl, context.level)) {
                        impl = held->second.fileNode.get();  // the file's own, as it was read
                    }
                }
                for (const auto& validator : repeated) {
                    writeFunctionElement(context.out, validator.second, "validationfunc",
                                         *validator.first);
                }
                if (context.markOpen(impl)) {
                    writeOpenTag(lock, *impl, context, depth + 1, false);
                }
                writeBody(lock, *impl, context, depth + 1, repeated);
                context.path.resize(pathLength);
            }
        }
        if (pushed) {
            repeated.pop_back();
        }
    }
    writeCloseTag(node, context, depth);
}

NodeWriter::RepeatedValidators NodeWriter::repeatedValidatorsOf(const ReadAccess& lock,
                                                                const SettingsImpl& node,
                                                                int depth) {
    RepeatedValidators repeated;
    auto parent = node.getParentImpl(lock);
    for (int at = depth; parent && !parent->isRootImpl(); --at) {
        if (parent->validator_.which() != 0) {
            repeated.emplace_back(&parent->validator_, at);
        }
        parent = parent->getParentImpl(lock);
    }
    std::reverse(repeated.begin(), repeated.end());  // outermost first, as openChain writes
    return repeated;
}

void NodeWriter::openChain(const ReadAccess& lock, const SettingsImpl& node, WriteContext& context,
                           int depth) {
    requireTreeLock(lock);
    const auto parent = node.getParentImpl(lock);
    const bool isDocumentElement = !parent || parent->isRootImpl();
    if (!isDocumentElement) {
        openChain(lock, *parent, context, depth - 1);
        writeFunctionElement(context.out, depth, "validationfunc", parent->validator_);
    }
    if (context.markOpen(&node)) {
        writeOpenTag(lock, node, context, depth, isDocumentElement);
    }
}

void NodeWriter::closeAncestors(const ReadAccess& lock, const SettingsImpl& node,
                                WriteContext& context, int depth) {
    requireTreeLock(lock);
    for (auto ancestor = node.getParentImpl(lock); ancestor;
         ancestor = ancestor->getParentImpl(lock)) {
        if (context.markClosed(ancestor.get())) {
            writeIndent(context.out, depth);
            context.out += "</settings>\n";
            --depth;
        }
    }
}

const RunTimeDefaultVariant& NodeWriter::runTimeDefaultOf(const ReadAccess& lock,
                                                          const SettingsImpl& key) {
    requireTreeLock(lock);
    return key.runTimeDefault_;
}

boost::optional<ArraySizeBounds> NodeWriter::arrayBoundsOf(const ReadAccess& lock,
                                                           const SettingsImpl& key) {
    requireTreeLock(lock);
    std::shared_lock<std::shared_mutex> caches(keyCacheMutex());
    return key.arraySizeBounds_;
}

void NodeWriter::writeOpenTag(const ReadAccess& lock, const SettingsImpl& node,
                              WriteContext& context, int depth, bool isDocumentElement) {
    std::string& out = context.out;
    if (isDocumentElement) {
        out += Settings::settingsXMLFileHeader;
        out += '\n';
    }
    writeIndent(out, depth);
    // The name goes out as it stands: the format has no escaping for it.
    out += node.isKey_ ? "<key name=\"" : "<settings name=\"";
    out += node.name_;
    out += '"';
    if (node.visible_.value_or(false)) {
        out += " visible=\"true\"";
    }
    if (node.version_ && isDocumentElement) {
        out += " version=\"";
        writeValueText(out, *node.version_);
        out += '"';
    }
    if (node.isReadOnly(lock)) {
        out += " readonly=\"true\"";
    }
    if (node.isKey_) {
        const auto typeCode = typeCodeOf(node);
        if (!typeCode || *typeCode == treestore::boostany::VoidTypeCode) {
            out += " anytype=\"true\"";
        }
    }
    if (isDocumentElement) {
        out += ' ';
        out += Settings::settingsSchemaInfo;
    }
    out += ">\n";
}

void NodeWriter::closeNode(const SettingsImpl& node, WriteContext& context, int depth) {
    writeCloseTag(node, context, depth);
}

void NodeWriter::setVersion(const UniqueFromUpgrade& lock, SettingsImpl& product,
                            unsigned version) {
    requireTreeLock(lock);
    product.version_ = version;
}

void NodeWriter::writeCloseTag(const SettingsImpl& node, WriteContext& context, int depth) {
    if (context.markClosed(&node)) {
        writeIndent(context.out, depth);
        context.out += node.isKey_ ? "</key>\n" : "</settings>\n";
    }
}

bool NodeWriter::isHeldAfter(const ReadAccess& lock, const SettingsImpl& key,
                             const WriteContext& context) {
    requireTreeLock(lock);
    for (const std::string& later : context.laterLevels) {
        if (key.values_.count(later) != 0) {
            return true;
        }
    }
    return false;
}

bool NodeWriter::holdsNothingAt(const ReadAccess& lock, const SettingsImpl& node,
                                const std::string& level) {
    if (node.isKey_) {
        const auto belonging = belongingLevelOf(node.runTimeDefault_);
        return node.values_.count(level) == 0 && (!belonging || *belonging != level);
    }
    for (const auto& child : node.children_) {
        if (!holdsNothingAt(lock, *child.second, level)) {
            return false;
        }
    }
    return true;
}

ValueWriter NodeWriter::valueWriterOf(const SettingsImpl& key) {
    std::shared_lock<std::shared_mutex> caches(keyCacheMutex());
    if (key.valueWriter_ || !key.typeCode_) {
        return key.valueWriter_;
    }
    // A key typed by its first value has its type code and no writer of its own yet.
    return *key.typeCode_ == treestore::boostany::VoidTypeCode
               ? anyTypeValueWriter()
               : valueWriterForTypeCode(*key.typeCode_);
}

boost::optional<int> NodeWriter::typeCodeOf(const SettingsImpl& key) {
    std::shared_lock<std::shared_mutex> caches(keyCacheMutex());
    return key.typeCode_;
}

}  // namespace detail

}  // namespace core
}  // namespace settings
