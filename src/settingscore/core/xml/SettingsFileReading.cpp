#include <settingscore/core/xml/SettingsFileReading.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/detail/MergePolicy.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/xml/SettingsFileParser.hpp>

#include <platform/hf/filesystem/Operations.hpp>
#include <platform/hf/filesystem/Path.hpp>
#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>

#include <filesystem>
#include <set>

namespace settings {
namespace core {
namespace detail {

namespace {

// `path` made absolute against the working directory, in normal form ("./a" and "a", "x/../a"
// and "a" are one file).
std::wstring normalAbsolute(const std::wstring& path) {
    std::filesystem::path native = hf::filesystem::upath(path).native_path();
    if (native.is_relative()) {
        std::error_code failed;
        const std::filesystem::path here = std::filesystem::current_path(failed);
        if (!failed) {
            native = here / native;
        }
    }
    return hf::filesystem::upath(native.lexically_normal()).wstring();
}

boost::shared_ptr<SettingsImpl> readFiles(const std::wstring& path, const std::string* content) {
    SettingsFileParser parser;
    std::set<std::wstring> visited;
    const std::wstring start = normalAbsolute(path);
    const hf::filesystem::upath firstFolder = hf::filesystem::upath(start).parent_path();
    std::wstring current = start;
    boost::shared_ptr<SettingsImpl> accumulated;
    bool firstMerged = true;  // files named by the first take definitions for new nodes only
    std::wstring errors;
    MergePolicy policy;
    policy.takeOver = true;
    policy.copyOnWrite = true;
    policy.runValidators = false;
    do {
        // Named files are relative to the first file's folder, whoever names them.
        const hf::filesystem::upath currentPath(current);
        const std::wstring absolute = normalAbsolute(hf::filesystem::is_absolute(currentPath)
                                                         ? current
                                                         : (firstFolder / currentPath).wstring());
        if (!visited.insert(absolute).second) {
            continue;  // read once, however often it is named
        }
        const bool first = !accumulated && content;
        const auto tree =
            SettingsImpl::implOf(first ? parser.parse(absolute, *content) : parser.parse(absolute));
        content = nullptr;
        if (!accumulated) {
            accumulated = tree;
        } else {
            accumulated =
                mergeFileTree(accumulated, tree, "user", firstMerged, errors, absolute, policy);
        }
    } while (parser.popAdditionalPath(current));
    if (!errors.empty()) {
        throw exception::ErrorReadingSettingsData(
            exception::ErrorReadingSettingsData::MergingIncludedFilesFailed,
            L"Error merging Settings' files. The starting file is: " + path);
    }
    return accumulated;
}

}  // namespace

boost::shared_ptr<SettingsImpl> mergeFileTree(const boost::shared_ptr<SettingsImpl>& accumulated,
                                              const boost::shared_ptr<SettingsImpl>& next,
                                              const std::string& levelName, bool& firstMerged,
                                              std::wstring& errors, const std::wstring& file,
                                              const MergePolicy& policy) {
    // The trees are this thread's own until the load hands them over: a private mutex is the
    // tree lock of the merge, and the live tree's readers never wait for a file.
    boost::shared_mutex privateMutex;
    UpgradeLock lock(privateMutex);
    // The merge works on a copy, so that a file that fails leaves `accumulated` as it was; only
    // the nodes that `next` touches are copied, the rest is shared and claimed at the end.
    const auto copy = SettingsImpl::copyForMerge(lock, *accumulated);
    if (next) {
        try {
            copy->mergeNode(lock, next, levelName, !firstMerged, true, policy);
            firstMerged = true;
        } catch (const hf::except::IMsgIDException& e) {
            errors += file + L"\t" +
                      hf::i18n::MessageCatalog::get_message(e.get_message_id(),
                                                            hf::i18n::HfLocale::global()) +
                      L"\n";
            return accumulated;
        } catch (const exception::MultipleRuntimeFuncError& e) {
            // This one failure keeps what was merged before it.
            errors += file + L"\t" + hf::i18n::to_ustring(e.what()) + L"\n";
        }
    }
    SettingsImpl::claimSharedChildren(lock, copy);
    return copy;
}

boost::shared_ptr<SettingsImpl> readSettingsFile(const std::wstring& path) {
    return readFiles(path, nullptr);
}

boost::shared_ptr<SettingsImpl> readSettingsContent(const std::wstring& path,
                                                    const std::string& content) {
    return readFiles(path, &content);
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
