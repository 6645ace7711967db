// settings::core::detail::NameToObjectTransformer: turns the entries of a host's bulk call into
// (key node, value) pairs for setValues. With (dotted path, value) entries it resolves each
// path below one node; with (node, value) entries it passes them through.
#pragma once

#include <settingscore/core/Settings.hpp>
#include <settingscore/core/exception/TreeExceptions.hpp>

#include <boost/any.hpp>

#include <string>
#include <utility>
#include <vector>

namespace settings {
namespace core {
namespace detail {

template <class T>
class NameToObjectTransformer;

template <>
class NameToObjectTransformer<std::pair<std::string, boost::any>> {
public:
    NameToObjectTransformer(bool throwOnError, const boost::shared_ptr<const Settings>& node,
                            std::vector<std::pair<std::string, std::string>>* failures)
        : throwOnError(throwOnError), node(node), failures(failures) {}

    // A path that names nothing: InvalidNodePath with throwOnError; otherwise a failure entry
    // and a pair with a null node, which setValues reports as "NULLOBJ".
    KeyValuePair operator()(const std::pair<std::string, boost::any>& entry) const {
        auto found = boost::const_pointer_cast<Settings>(node)->getNodeByPath(entry.first);
        if (!found) {
            if (throwOnError) {
                throw exception::InvalidNodePath(node, entry.first);
            }
            if (failures) {
                failures->emplace_back(node->getName(), "The calling node doesn't contain");
            }
        }
        return KeyValuePair(found, entry.second);
    }

    bool throwOnError;
    boost::shared_ptr<const Settings> node;
    std::vector<std::pair<std::string, std::string>>* failures;
};

template <>
class NameToObjectTransformer<KeyValuePair> {
public:
    NameToObjectTransformer(bool throwOnError, const boost::shared_ptr<const Settings>& node,
                            std::vector<std::pair<std::string, std::string>>* failures)
        : throwOnError(throwOnError), node(node), failures(failures) {}

    const KeyValuePair& operator()(const KeyValuePair& entry) const { return entry; }

    bool throwOnError;
    boost::shared_ptr<const Settings> node;
    std::vector<std::pair<std::string, std::string>>* failures;
};

}  // namespace detail
}  // namespace core
}  // namespace settings
