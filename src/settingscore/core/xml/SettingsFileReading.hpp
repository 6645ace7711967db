// Reading settings files into trees: one file and every file it names ("additionalpath") into
// one standalone tree, and the merge of such a tree into the tree accumulated so far. Files are
// read through the file system in force (hf::filesystem::FileSystem).
#pragma once

#include <settingscore/core/SettingsFwd.hpp>

#include <boost/shared_ptr.hpp>

#include <string>

namespace settings {
namespace core {

class SettingsImpl;

namespace detail {

struct MergePolicy;

// Parses `path` and the files it names, each read once (paths compared in normal form),
// relative paths taken against the folder of `path` (a relative `path` itself against the
// working directory), the last named first; merges them into one standalone tree whose values
// sit at level "user". A failure to read or parse throws ErrorReadingSettingsData (code 4 or
// 5); a merge that left error lines throws code 6.
boost::shared_ptr<SettingsImpl> readSettingsFile(const std::wstring& path);

// The same, with the bytes of `path` itself already read.
boost::shared_ptr<SettingsImpl> readSettingsContent(const std::wstring& path,
                                                    const std::string& content);

// Null for an empty path, else readSettingsFile.
boost::shared_ptr<SettingsImpl> loadSettingsFile(const std::wstring& path);

// A copy of `accumulated` with `next` merged in at `levelName`, by `policy`, which must be
// copy-on-write. The first merge takes the definitions of `next` (`firstMerged` false), later
// ones only for new nodes. A message failure of the merge leaves `accumulated` as the result,
// unchanged, and adds the line "<file>\t<message>\n" to `errors`; two run-time defaults on one
// key add such a line and keep the copy as far as it got; anything else is thrown,
// `accumulated` unchanged. (With the policy's hold-back set, only failures of the top nodes
// end the merge: everything below is held back.)
// The copy shares (and takes over) the subtrees of `accumulated` that `next` does not touch,
// so once a result other than `accumulated` is returned, `accumulated` is spent: the caller
// uses the result in its place. `next` is given up to the merge: it may lose nodes to it.
boost::shared_ptr<SettingsImpl> mergeFileTree(const boost::shared_ptr<SettingsImpl>& accumulated,
                                              const boost::shared_ptr<SettingsImpl>& next,
                                              const std::string& levelName, bool& firstMerged,
                                              std::wstring& errors, const std::wstring& file,
                                              const MergePolicy& policy);

}  // namespace detail
}  // namespace core
}  // namespace settings
