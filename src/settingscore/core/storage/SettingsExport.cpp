// Export of selected nodes to a file of the caller's choosing, and factory files made from
// standalone trees. Both write straight to the destination, through the file system in force:
// no temporary file, no replace.
//
// Locks: exportSettings holds the root mutex shared from the first shadow to the end of the
// write, so the file is one consistent snapshot. createFactorySettingsFile takes it exclusively
// (from upgrade) to stamp the version, then shared to write.
#include <settingscore/core/Settings.hpp>

#include <settingscore/core/FakeSettingsTreeNode.hpp>
#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/xml/detail/NodeWriter.hpp>

#include <platform/hf/filesystem/FileSystem.hpp>
#include <platform/hf/filesystem/FilesystemError.hpp>
#include <platform/hf/filesystem/Operations.hpp>
#include <platform/hf/filesystem/Path.hpp>

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

// The whole text to `path`. A file that cannot be opened or written in full is reported, a
// short file being left where a write failed half way.
void writeWhole(const std::wstring& path, const std::string& text,
                const ConstSettingsPtr& reported) {
    try {
        hf::filesystem::FileSystem::current().writeFile(hf::filesystem::upath(path), text, false);
    } catch (const hf::filesystem::FsysExceptionBase&) {
        throw exception::ErrorSaveSettingsDueToFileIOError(reported, path);
    }
}

}  // namespace

void Settings::exportSettings(const std::vector<boost::shared_ptr<const Settings>>& nodes,
                              const std::wstring& path, const std::string& level) {
    if (nodes.empty()) {
        throw exception::NoNodeSelectedForExport();
    }
    // A product nobody touched yet is read first: its file is what is exported.
    for (const auto& node : nodes) {
        SettingsImpl::implOf(node)->ensureLoaded();
    }
    SettingsImpl::implOf(nodes.front())->checkLevelKnown(level);
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
    std::string text;
    detail::WriteContext context(text, level);
    writeShadow(lock, *shadow, context, 0);
    writeWhole(path, text, nodes.front());
}

void Settings::createFactorySettingsFile(const boost::shared_ptr<const Settings>& node,
                                         const std::wstring& path, unsigned int version) {
    if (node->isOnTree()) {
        throw exception::ErrorCreateFactoryFileFromATreeNode(node);
    }
    if (!hf::filesystem::is_absolute(hf::filesystem::upath(path))) {
        throw exception::ErrorExportOrImportSettingsUsingRelativePath(path);
    }
    {
        // A destination that cannot be written is refused before the tree is stamped.
        hf::filesystem::FileSystem& files = hf::filesystem::FileSystem::current();
        const hf::filesystem::upath file(path);
        if (files.checkWritable(file) ||
            files.examine(file.parent_path()).type != hf::filesystem::file_type::directory) {
            throw exception::ErrorSaveSettingsDueToFileIOError(node, path);
        }
    }
    const auto impl = SettingsImpl::implOf(node);
    boost::shared_ptr<SettingsImpl> product;
    {
        detail::UpgradeLock lock(detail::rootMutex());
        product = impl->productNodeOf(lock);
        detail::UniqueFromUpgrade exclusive(lock);
        detail::NodeWriter::setVersion(exclusive, *product, version);
    }
    std::string text;
    {
        detail::SharedLock lock(detail::rootMutex());
        detail::NodeWriter::writeDocument(lock, *product, std::string(), text);
    }
    writeWhole(path, text, node);
}

}  // namespace core
}  // namespace settings
