#include <settingscore/treestore/boostany/Equality.hpp>

#include <settingscore/treestore/boostany/detail/VisitAny.hpp>

#include <typeinfo>

namespace treestore {
namespace boostany {

namespace {

// Compares the held value of `a` (the visited one) with `other`.
struct EqualTo {
    const boost::any& other;

    bool operator()() const { return other.empty(); }

    template <class S>
    bool operator()(const S& held) const {
        if (other.type() != typeid(S)) {
            return false;
        }
        return held == *boost::unsafe_any_cast<S>(&other);
    }
};

struct AcceptAny {
    bool operator()() const { return true; }

    template <class S>
    bool operator()(const S&) const {
        return true;
    }
};

}  // namespace

bool isEqual(const boost::any& a, const boost::any& b) {
    if (&a == &b) {
        return true;
    }
    return detail::visitAny(a, EqualTo{b});
}

bool isSupported(const boost::any& value) {
    // The same dispatch as every other operation, so that membership cannot drift from what
    // get<T> and isEqual accept.
    try {
        return detail::visitAny(value, AcceptAny{});
    } catch (const UnsupportedAnyType&) {
        return false;
    }
}

}  // namespace boostany
}  // namespace treestore
