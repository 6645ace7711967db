#include <settingscore/core/xml/SettingsFileReading.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/xml/SettingsFileParser.hpp>
#include <settingscore/core/xml/detail/NodeBuilder.hpp>

#include <platform/hf/filesystem/Operations.hpp>
#include <platform/hf/filesystem/Path.hpp>
#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>

#include <set>

namespace settings {
namespace core {
namespace detail {

boost::shared_ptr<SettingsImpl> mergeFileTree(const boost::shared_ptr<SettingsImpl>& accumulated,
                                              const boost::shared_ptr<SettingsImpl>& next,
                                              const std::string& levelName, bool& firstMerged,
                                              std::wstring& errors, const std::wstring& file) {
    // The trees are this thread's own until the load hands them over: a private mutex is the
    // tree lock of the merge, and the live tree's readers never wait for a file.
    boost::shared_mutex privateMutex;
    UpgradeLock lock(privateMutex);
    // The merge works on a copy, so that a file that fails leaves `accumulated` as it was; only
    // the nodes that `next` touches are copied, the rest is shared and claimed at the end.
    const auto copy = NodeBuilder::copyForMerge(lock, *accumulated);
    if (!next) {
        NodeBuilder::claimSharedChildren(lock, copy);
        return copy;
    }
    try {
        // With nothing below the top to merge with (a product's first file), the file's own
        // nodes are taken over instead of being copied one by one.
        if (NodeBuilder::mergeIntoEmptyGroup(lock, *copy, next, levelName, !firstMerged)) {
            // Every node below `copy` came from `next` and names `copy` as its parent:
            // nothing is shared with `accumulated`, which had no children.
            firstMerged = true;
            return copy;
        }
        NodeBuilder::mergeCopyingPath(lock, copy, next, levelName, !firstMerged);
        firstMerged = true;
    } catch (const hf::except::IMsgIDException& e) {
        errors += file + L"\t" +
                  hf::i18n::MessageCatalog::get_message(e.get_message_id(),
                                                        hf::i18n::HfLocale::global()) +
                  L"\n";
        return accumulated;
    } catch (const exception::MultipleRuntimeFuncError& e) {
        errors += file + L"\t" + hf::i18n::to_ustring(e.what()) + L"\n";
        NodeBuilder::claimSharedChildren(lock, copy);
        return copy;  // this one failure keeps what was merged before it
    }
    NodeBuilder::claimSharedChildren(lock, copy);
    return copy;
}

boost::shared_ptr<SettingsImpl> readSettingsFile(const std::wstring& path) {
    SettingsFileParser parser;
    std::set<std::wstring> visited;
    const hf::filesystem::upath firstFolder = hf::filesystem::upath(path).parent_path();
    std::wstring current = path;
    boost::shared_ptr<SettingsImpl> accumulated;
    bool firstMerged = true;  // files named by the first take definitions for new nodes only
    std::wstring errors;
    do {
        // Named files are relative to the first file's folder, whoever names them.
        const hf::filesystem::upath currentPath(current);
        const std::wstring absolute = hf::filesystem::is_absolute(currentPath)
                                          ? current
                                          : (firstFolder / currentPath).wstring();
        if (!visited.insert(absolute).second) {
            continue;  // read once, however often it is named
        }
        const auto tree = SettingsImpl::implOf(parser.parse(absolute));
        if (!accumulated) {
            accumulated = tree;
        } else {
            accumulated = mergeFileTree(accumulated, tree, "user", firstMerged, errors, absolute);
        }
    } while (parser.popAdditionalPath(current));
    if (!errors.empty()) {
        throw exception::ErrorReadingSettingsData(
            exception::ErrorReadingSettingsData::MergingIncludedFilesFailed,
            L"Error merging Settings' files. The starting file is: " + path);
    }
    return accumulated;
}

boost::shared_ptr<SettingsImpl> loadSettingsFile(const std::wstring& path) {
    return path.empty() ? boost::shared_ptr<SettingsImpl>() : readSettingsFile(path);
}

}  // namespace detail

boost::shared_ptr<Settings> Settings::importAsStandaloneObject(const std::wstring& path) {
    if (!hf::filesystem::is_absolute(hf::filesystem::upath(path))) {
        throw exception::ErrorExportOrImportSettingsUsingRelativePath(path);
    }
    return detail::readSettingsFile(path);
}

}  // namespace core
}  // namespace settings
