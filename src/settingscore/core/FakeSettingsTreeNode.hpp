// settings::core::FakeSettingsTreeNode: a shadow of selected branches of the tree. Each entry
// points at a real node and holds the shadows of those of its children that were selected;
// an export builds one to know which parts of a product to write.
#pragma once

#include <settingscore/core/Settings.hpp>

#include <boost/container/set.hpp>
#include <boost/shared_ptr.hpp>

namespace settings {
namespace core {

struct FakeSettingsTreeNode {
    boost::shared_ptr<Settings> node;
    // Ordered by the children's names, which are unique below one node.
    boost::container::set<FakeSettingsTreeNode> children;

    friend bool operator<(const FakeSettingsTreeNode& a, const FakeSettingsTreeNode& b) {
        return a.node->getName() < b.node->getName();
    }
};

}  // namespace core
}  // namespace settings
