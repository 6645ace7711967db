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

namespace settings {
namespace core {

template <class Lock>
void SettingsImpl::writeSettings(const Lock& lock, std::ostream& out,
                                 const std::string& level) const {
    detail::requireTreeLock(lock);
    // No level means the effective stored values, as an export writes them.
    if (!level.empty()) {
        checkLevelKnown(level);
    }
    const detail::ReadAccess access(lock);
    int depth = 0;  // the ancestors between this node and the root: 0 for a product node
    for (auto ancestor = getParentImpl(lock); ancestor && !ancestor->isRootImpl();
         ancestor = ancestor->getParentImpl(lock)) {
        ++depth;
    }
    detail::WriteContext context{out, level, {}};
    detail::NodeWriter::writeTree(access, *this, context, depth);
    detail::NodeWriter::closeAncestors(access, *this, context, depth - 1);
}

#define SETTINGSCORE_INSTANTIATE_WRITING(Lock) \
    template void SettingsImpl::writeSettings(const Lock&, std::ostream&, const std::string&) const;
SETTINGSCORE_FOR_EACH_TREE_LOCK(SETTINGSCORE_INSTANTIATE_WRITING)
#undef SETTINGSCORE_INSTANTIATE_WRITING

namespace detail {

void NodeWriter::writeTree(const ReadAccess& lock, const SettingsImpl& node, WriteContext& context,
                           int depth) {
    requireTreeLock(lock);
    openChain(lock, node, context, depth);
    if (node.isKey_) {
        // The key's own validator goes with the level that alone defines the key.
        if (!context.level.empty() && !isHeldAfter(lock, node, context.level)) {
            writeFunctionElement(context.out, depth + 1, "validationfunc", node.validator_);
        }
        if (const ValueWriter writer = valueWriterOf(node)) {
            writer(context.out, node, lock, context.level, static_cast<unsigned>(depth + 1));
        }
    } else {
        // Keys first, then groups, each in the children's (byte) name order.
        for (const bool keys : {true, false}) {
            for (const auto& child : node.children_) {
                if (child.second->isKey_ == keys) {
                    writeTree(lock, *child.second, context, depth + 1);
                }
            }
        }
    }
    writeCloseTag(node, context, depth);
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
    if (context.openTags.insert(&node).second) {
        writeOpenTag(lock, node, context, depth, isDocumentElement);
    }
}

void NodeWriter::closeAncestors(const ReadAccess& lock, const SettingsImpl& node,
                                WriteContext& context, int depth) {
    requireTreeLock(lock);
    for (auto ancestor = node.getParentImpl(lock); ancestor;
         ancestor = ancestor->getParentImpl(lock)) {
        if (context.openTags.erase(ancestor.get()) != 0) {
            writeIndent(context.out, depth);
            context.out << "</settings>\n";
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
    boost::shared_lock<boost::shared_mutex> caches(keyCacheMutex());
    return key.arraySizeBounds_;
}

void NodeWriter::writeOpenTag(const ReadAccess& lock, const SettingsImpl& node,
                              WriteContext& context, int depth, bool isDocumentElement) {
    std::ostream& out = context.out;
    if (isDocumentElement) {
        out << Settings::settingsXMLFileHeader << '\n';
    }
    writeIndent(out, depth);
    // The name goes out as it stands: the format has no escaping for it.
    out << '<' << (node.isKey_ ? "key" : "settings") << " name=\"" << node.name_ << '"';
    if (node.visible_.value_or(false)) {
        out << " visible=\"true\"";
    }
    if (node.version_ && isDocumentElement) {
        out << " version=\"" << *node.version_ << '"';
    }
    if (node.isReadOnly(lock)) {
        out << " readonly=\"true\"";
    }
    if (node.isKey_) {
        const auto typeCode = typeCodeOf(node);
        if (!typeCode || *typeCode == treestore::boostany::VoidTypeCode) {
            out << " anytype=\"true\"";
        }
    }
    if (isDocumentElement) {
        out << ' ' << Settings::settingsSchemaInfo;
    }
    out << ">\n";
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
    if (context.openTags.erase(&node) != 0) {
        writeIndent(context.out, depth);
        context.out << "</" << (node.isKey_ ? "key" : "settings") << ">\n";
    }
}

bool NodeWriter::isHeldAfter(const ReadAccess& lock, const SettingsImpl& key,
                             const std::string& level) {
    requireTreeLock(lock);
    bool after = false;
    for (const SettingsLevel& candidate : SettingsLevelManager::getSettingsLevelObjs()) {
        const std::string name = candidate.levelName();
        if (after && key.values_.count(name) != 0) {
            return true;
        }
        after = after || name == level;
    }
    return false;
}

ValueWriter NodeWriter::valueWriterOf(const SettingsImpl& key) {
    boost::shared_lock<boost::shared_mutex> caches(keyCacheMutex());
    if (key.valueWriter_ || !key.typeCode_) {
        return key.valueWriter_;
    }
    // A key typed by its first value has its type code and no writer of its own yet.
    return *key.typeCode_ == treestore::boostany::VoidTypeCode
               ? anyTypeValueWriter()
               : valueWriterForTypeCode(*key.typeCode_);
}

boost::optional<int> NodeWriter::typeCodeOf(const SettingsImpl& key) {
    boost::shared_lock<boost::shared_mutex> caches(keyCacheMutex());
    return key.typeCode_;
}

}  // namespace detail

}  // namespace core
}  // namespace settings
