// settings::core::ArraySizeBounds: how many elements a key's value may have. A scalar counts
// as one element; a maximum of 0 means no upper limit.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>

#include <boost/weak_ptr.hpp>

namespace settings {
namespace core {

class ArraySizeBounds {
public:
    ArraySizeBounds(const boost::weak_ptr<const Settings>& owner, unsigned minArraySize,
                    unsigned maxArraySize)
        : owner_(owner), maxArraySize_(maxArraySize), minArraySize_(minArraySize) {}

    const boost::weak_ptr<const Settings>& getOwner() const { return owner_; }
    unsigned getMaxArraySize() const { return maxArraySize_; }
    unsigned getMinArraySize() const { return minArraySize_; }

    bool admits(unsigned size) const {
        return size >= minArraySize_ && (maxArraySize_ == 0 || size <= maxArraySize_);
    }

private:
    boost::weak_ptr<const Settings> owner_;
    unsigned maxArraySize_;
    unsigned minArraySize_;
};

}  // namespace core
}  // namespace settings
