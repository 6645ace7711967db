// settings::core::SettingsKeyMetaData: a key's limits. The untyped form
// SettingsKeyMetaData<boost::any> is how a key stores them and hands them out (min, max,
// choices, each possibly unset); the typed form SettingsKeyMetaData<T>, for each of the twelve
// scalar types, reads them strictly as T. For std::wstring the bounds limit the text's length.
#pragma once

#include <settingscore/treestore/boostany/Equality.hpp>
#include <settingscore/treestore/boostany/Get.hpp>
#include <settingscore/treestore/boostany/SupportedTypes.hpp>

#include <boost/any.hpp>
#include <boost/optional.hpp>

#include <string>
#include <vector>

namespace settings {
namespace core {

template <class T>
class SettingsKeyMetaData;

template <>
class SettingsKeyMetaData<boost::any> {
public:
    SettingsKeyMetaData() = default;
    SettingsKeyMetaData(const boost::any& min, const boost::any& max,
                        const boost::optional<std::vector<boost::any>>& listOfChoice)
        : min_(min), max_(max), listOfChoice_(listOfChoice) {}

    const boost::any& getMin() const { return min_; }
    const boost::any& getMax() const { return max_; }
    const boost::optional<std::vector<boost::any>>& getListOfChoice() const {
        return listOfChoice_;
    }

    // No bound and no list of choices.
    bool isEmpty() const { return min_.empty() && max_.empty() && !listOfChoice_; }

    // Bounds compare by value (isEqual); an absent list equals only an absent list.
    bool operator==(const SettingsKeyMetaData& other) const {
        using treestore::boostany::isEqual;
        if (!isEqual(min_, other.min_) || !isEqual(max_, other.max_)) {
            return false;
        }
        if (!listOfChoice_ || !other.listOfChoice_) {
            return !listOfChoice_ && !other.listOfChoice_;
        }
        if (listOfChoice_->size() != other.listOfChoice_->size()) {
            return false;
        }
        for (std::size_t i = 0; i < listOfChoice_->size(); ++i) {
            if (!isEqual((*listOfChoice_)[i], (*other.listOfChoice_)[i])) {
                return false;
            }
        }
        return true;
    }
    bool operator!=(const SettingsKeyMetaData& other) const { return !(*this == other); }

private:
    boost::any min_;
    boost::any max_;
    boost::optional<std::vector<boost::any>> listOfChoice_;
};

namespace detail {

// A text's bounds are lengths.
template <class T>
struct MetaDataBound {
    using type = T;
};
template <>
struct MetaDataBound<std::wstring> {
    using type = unsigned int;
};

}  // namespace detail

template <class T>
class SettingsKeyMetaData {
    static_assert(treestore::boostany::isScalarType<T>,
                  "typed metadata exists for the twelve scalar types only");

public:
    using BoundType = typename detail::MetaDataBound<T>::type;

    // Reads each set bound and each choice strictly: an entry of another type throws the
    // value layer's type failure.
    explicit SettingsKeyMetaData(const SettingsKeyMetaData<boost::any>& untyped) {
        using treestore::boostany::get;
        if (!untyped.getMin().empty()) {
            min_ = get<BoundType>(untyped.getMin(), false);
        }
        if (!untyped.getMax().empty()) {
            max_ = get<BoundType>(untyped.getMax(), false);
        }
        if (untyped.getListOfChoice()) {
            std::vector<T> choices;
            choices.reserve(untyped.getListOfChoice()->size());
            for (const auto& choice : *untyped.getListOfChoice()) {
                choices.push_back(get<T>(choice, false));
            }
            listOfChoice_ = std::move(choices);
        }
    }

    const boost::optional<BoundType>& getMin() const { return min_; }
    const boost::optional<BoundType>& getMax() const { return max_; }
    const boost::optional<std::vector<T>>& getListOfChoice() const { return listOfChoice_; }

private:
    boost::optional<BoundType> min_;
    boost::optional<BoundType> max_;
    boost::optional<std::vector<T>> listOfChoice_;
};

}  // namespace core
}  // namespace settings
