// Export of selected nodes to a file of the caller's choosing, and factory files made from
// standalone trees. Both write straight to the destination: no temporary file, no replace.
//
// Locks: exportSettings holds the root mutex shared from the first shadow to the end of the
// write, so the file is one consistent snapshot. createFactorySettingsFile takes it exclusively
// (from upgrade) to stamp the version, then shared to write.
#include <settingscore/core/Settings.hpp>

#include <settingscore/core/FakeSettingsTreeNode.hpp>
#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/xml/detail/NodeWriter.hpp>

#include <platform/hf/filesystem/Operations.hpp>
#include <platform/hf/filesystem/Path.hpp>

#include <fstream>
#include <stdexcept>

namespace settings {
namespace core {

namespace {

const SettingsImpl& implOf(const FakeSettingsTreeNode& shadow) {
    return static_cast<const SettingsImpl&>(*shadow.node);
}

// The chain of shadows from `node` up to its product (or to the top of a standalone tree), the
// node itself standing in full at the bottom.
FakeSettingsTreeNode chainOf(const detail::SharedLock& lock, const ConstSettingsPtr& node) {
    const auto impl = SettingsImpl::implOf(node);
    FakeSettingsTreeNode chain{boost::const_pointer_cast<Settings>(node), {}};
    if (impl->isRootImpl()) {
        return chain;
    }
    for (auto parent = impl->getParentImpl(lock); parent && !parent->isRootImpl();
         parent = parent->getParentImpl(lock)) {
        FakeSettingsTreeNode wrapper{parent, {}};
        wrapper.children.insert(std::move(chain));
        chain = std::move(wrapper);
    }
    return chain;
}

// Adds the selection `chain` (a line of shadows from the same node as `into` down) to `into`.
// A shadow standing in full stays so; a frame gains the child, or becomes full when the chain
// selects its node itself.
void mergeChain(FakeSettingsTreeNode& into, const FakeSettingsTreeNode& chain) {
    if (into.children.empty()) {
        return;
    }
    if (chain.children.empty()) {
        into.children.clear();
        return;
    }
    const FakeSettingsTreeNode& next = *chain.children.begin();
    const auto found = into.children.find(next);
    if (found == into.children.end()) {
        into.children.insert(next);
        return;
    }
    // Only the children change, never the name that orders the set.
    mergeChain(const_cast<FakeSettingsTreeNode&>(*found), next);
}

void writeShadow(const detail::SharedLock& lock, const FakeSettingsTreeNode& shadow,
                 detail::WriteContext& context, int depth) {
    const SettingsImpl& node = implOf(shadow);
    if (shadow.children.empty()) {
        detail::NodeWriter::writeTree(lock, node, context, depth);
        return;
    }
    detail::NodeWriter::openChain(lock, node, context, depth);
    for (const auto& child : shadow.children) {
        writeShadow(lock, child, context, depth + 1);
    }
    detail::NodeWriter::closeNode(node, context, depth);
}

std::ofstream openForWriting(const std::wstring& path) {
    return std::ofstream(
        hf::filesystem::detail::make_native_access_form(hf::filesystem::upath(path)),
        std::ios::out | std::ios::trunc);
}

}  // namespace

void Settings::exportSettings(const std::vector<boost::shared_ptr<const Settings>>& nodes,
                              const std::wstring& path, const std::string& level) {
    if (nodes.empty()) {
        throw std::invalid_argument("exportSettings: no node selected");
    }
    detail::SharedLock lock(detail::rootMutex());
    boost::optional<FakeSettingsTreeNode> shadow;
    for (const auto& node : nodes) {
        FakeSettingsTreeNode chain = chainOf(lock, node);
        if (!shadow) {
            shadow = std::move(chain);
        } else if (shadow->node != chain.node) {
            throw exception::ErrorExportMultipleNodesBelongsToDiffProducts(shadow->node->getName(),
                                                                           chain.node->getName());
        } else {
            mergeChain(*shadow, chain);
        }
    }
    const SettingsImpl& top = implOf(*shadow);
    if (top.isRootImpl()) {
        throw exception::CannotExportSettingsRoot(shadow->node);
    }
    if (!top.isOnTree()) {
        throw exception::CannotExportStandaloneSettings(shadow->node);
    }
    if (!hf::filesystem::is_absolute(hf::filesystem::upath(path))) {
        throw exception::ErrorExportOrImportSettingsUsingRelativePath(shadow->node, path);
    }
    std::ofstream stream = openForWriting(path);
    if (!stream) {
        throw exception::ErrorSaveSettingsDueToFileIOError(nodes.front(), path);
    }
    std::string text;
    detail::WriteContext context(text, level);
    writeShadow(lock, *shadow, context, 0);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.flush();
}

void Settings::createFactorySettingsFile(const boost::shared_ptr<const Settings>& node,
                                         const std::wstring& path, unsigned int version) {
    if (node->isOnTree()) {
        throw exception::ErrorCreateFactoryFileFromATreeNode(node);
    }
    if (!hf::filesystem::is_absolute(hf::filesystem::upath(path))) {
        throw exception::ErrorExportOrImportSettingsUsingRelativePath(path);
    }
    std::ofstream stream = openForWriting(path);
    if (!stream) {
        throw exception::ErrorSaveSettingsDueToFileIOError(node, path);
    }
    const auto impl = SettingsImpl::implOf(node);
    boost::shared_ptr<SettingsImpl> product;
    {
        detail::UpgradeLock lock(detail::rootMutex());
        product = impl->productNodeOf(lock);
        detail::UniqueFromUpgrade exclusive(lock);
        detail::NodeWriter::setVersion(exclusive, *product, version);
    }
    detail::SharedLock lock(detail::rootMutex());
    product->writeSettings(lock, stream, std::string());
    stream.flush();
}

}  // namespace core
}  // namespace settings
