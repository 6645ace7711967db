// settings::core::SettingsLevel: one level of the fixed level table (session, user, factory):
// whether its values may change, whether and how many files a product has there, and where
// its files lie.
#pragma once

#include <boost/function.hpp>
#include <boost/thread/once.hpp>

#include <cstdint>
#include <string>

namespace settings {
namespace core {

class SettingsLevel {
public:
    // Copies `rootPathFunc` and resolves nothing; an empty function means a level without
    // files. maxFileCount: 0 no file, 1 one file per product, all bits set any number.
    SettingsLevel(const std::string& name, const boost::function<std::wstring()>& rootPathFunc,
                  bool canBeModified, unsigned maxFileCount, bool isFactoryLevel,
                  bool isWorkgroupLevel, bool isUserLevel);

    bool canBeModified() const { return canBeModified_; }
    bool canHaveFile() const { return maxFileCount_ != 0; }
    bool isFactoryLevel() const { return isFactoryLevel_; }
    bool isWorkgroupLevel() const { return isWorkgroupLevel_; }
    bool isUserLevel() const { return isUserLevel_; }
    const std::string levelName() const { return levelName_; }

    // Runs the root path function anew on every call, so that a changed environment variable
    // or preference directory shows at once; empty for a level without files. Whatever the
    // function throws reaches the caller and leaves the last path as it was.
    const std::wstring levelRootPath() const;

private:
    void initRootPath() const;
    void initRootPathOnce();

    std::string levelName_;
    // The last resolved root path. Levels live in a table of const objects, yet every
    // levelRootPath refreshes this one field, hence mutable.
    mutable std::wstring rootPath_;
    bool canBeModified_;
    std::uint32_t maxFileCount_;
    // Reserved for a one-time resolution; the path is deliberately resolved on every call.
    boost::once_flag rootPathOnce_;
    boost::function<std::wstring()> rootPathFunc_;
    bool isFactoryLevel_;
    bool isWorkgroupLevel_;
    bool isUserLevel_;

    // Bound to initRootPathOnce at static initialisation; kept for the one-time path, no
    // operation calls it.
    static boost::function1<void, SettingsLevel*> initFunc_;
};

}  // namespace core
}  // namespace settings
