// A product's file at a level with files: its name on disk, its lock file, reading it (through
// the file system in force) into a tree, and the copies kept of a file that could not be read
// as settings.
#pragma once

#include <platform/hf/filesystem/FileSystem.hpp>

#include <boost/optional.hpp>
#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

namespace settings {
namespace core {

class SettingsImpl;

namespace detail {

// "<product>.settings": the file a product's first save makes.
std::string defaultFileNameOf(const std::string& product);

// The lock file that saves of `product` hold against each other, beside its files: one name
// whatever the case the product or its file is spelled in.
std::string lockFileNameOf(const std::string& product);

// The name of `product`'s file in `folder`: "<product>.settings" when that is a file, else a
// regular file whose name is that but for the case of ASCII letters (the rule products are
// told apart by); none when there is neither. Never throws: a folder that cannot be read
// holds no file.
boost::optional<std::string> findProductFile(hf::filesystem::FileSystem& files,
                                             const hf::filesystem::upath& folder,
                                             const std::string& product);

// One read of a product's file.
struct LevelFileRead {
    hf::filesystem::FileInfo version;      // not_found: there was no file
    std::string content;                   // the bytes read
    boost::shared_ptr<SettingsImpl> tree;  // the file as a standalone tree, values at "user"
    // The file is there but could not be read, or did not parse: the reader's text.
    boost::optional<std::wstring> failure;
    // Where the bytes of a file that did not parse were kept (none for a file that could not
    // be read at all: there are no bytes to keep).
    boost::optional<std::wstring> keptCopy;
    // Why no copy could be kept; the file must then not be replaced.
    boost::optional<std::wstring> keepFailure;
};

// Reads `folder`/`fileName` and the files it names. A file that does not parse is copied
// aside first (keepUnreadableCopy), with `durable` syncs.
LevelFileRead readLevelFile(hf::filesystem::FileSystem& files, const hf::filesystem::upath& folder,
                            const std::string& fileName, bool durable);

// Copies `content`, the bytes of `folder`/`fileName` that could not be read as settings, to
// "<fileName>.unreadable-<UTC time>" beside it, unless the newest such copy holds the same
// bytes already; keeps the 10 newest copies of that file and removes older ones. The copy.
hf::filesystem::upath keepUnreadableCopy(hf::filesystem::FileSystem& files,
                                         const hf::filesystem::upath& folder,
                                         const std::string& fileName, const std::string& content,
                                         bool durable);

// The copies kept of `folder`/`fileName`, oldest first.
std::vector<hf::filesystem::upath> keptCopiesOf(hf::filesystem::FileSystem& files,
                                                const hf::filesystem::upath& folder,
                                                const std::string& fileName);

// The text a load failure line gives for the exception in flight: the reader's own text for
// ErrorReadingSettingsData, the catalogue text of a message failure, else what().
// REQUIRES: called from a catch block.
std::wstring failureTextInFlight();

}  // namespace detail
}  // namespace core
}  // namespace settings
