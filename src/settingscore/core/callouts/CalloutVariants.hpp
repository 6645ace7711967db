// The validator a key or group carries and the run-time default a key carries: one of the
// callout kinds, or boost::mpl::void_ for none.
#pragma once

#include <settingscore/core/callouts/CRunTimeDefault.hpp>
#include <settingscore/core/callouts/CValidator.hpp>
#include <settingscore/core/callouts/JRunTimeDefault.hpp>
#include <settingscore/core/callouts/JValidator.hpp>
#include <settingscore/core/callouts/TRunTimeDefault.hpp>
#include <settingscore/core/callouts/TValidator.hpp>

#include <boost/mpl/void.hpp>
#include <boost/variant.hpp>

// "None" equals "none", so that two variants compare with == whatever they hold. Found by
// argument-dependent lookup from boost::variant's comparison, hence declared in the namespace
// that really holds boost::mpl::void_ (behind the library's lookup barrier).
namespace BOOST_MPL_AUX_ADL_BARRIER_NAMESPACE {
inline bool operator==(const void_&, const void_&) {
    return true;
}
inline bool operator!=(const void_&, const void_&) {
    return false;
}
}  // namespace BOOST_MPL_AUX_ADL_BARRIER_NAMESPACE

namespace settings {
namespace core {

using ValidatorVariant = boost::variant<boost::mpl::void_, TValidator, CValidator, JValidator>;
using RunTimeDefaultVariant =
    boost::variant<boost::mpl::void_, TRunTimeDefault, CRunTimeDefault, JRunTimeDefault>;

}  // namespace core
}  // namespace settings
