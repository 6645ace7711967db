// Every class of the failure catalogue, one sample each: the fields come back as given and
// survive a copy across an exception_ptr with the exact class, the `what` text is the fixed
// one through every interface, and the class is caught through the bases it promises only.
#include "CatalogSamples.hpp"

#include <platform/hf/except/IException.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

namespace exceptiontest {
namespace {

template <class E>
class CatalogExceptionTest : public ::testing::Test {};
TYPED_TEST_SUITE(CatalogExceptionTest, CatalogClasses);

TYPED_TEST(CatalogExceptionTest, KeepsClassFieldsAndTextAcrossCopies) {
    using E = TypeParam;
    using S = Sample<E>;
    for (int seed : {1, 2}) {
        SCOPED_TRACE(seed);
        const auto in = S::inputs(seed);
        const auto expected = S::expected(in);
        const E original = S::make(in);
        EXPECT_TRUE(S::fields(original) == expected) << "arguments not kept in order";

        // boost::current_exception copies through clone(): a clone of the wrong class or with
        // lost fields shows here.
        const std::optional<E> copy = acrossExceptionPtr(original);
        ASSERT_TRUE(copy.has_value());
        EXPECT_TRUE(S::fields(*copy) == expected);
        // Through each interface that declares `what`: one override must serve both.
        const hf::except::IException& asHost = *copy;
        const std::exception& asStd = original;
        EXPECT_STREQ(asHost.what(), S::what);
        EXPECT_STREQ(asStd.what(), S::what);
    }

    const E e = S::make(S::inputs(1));
    EXPECT_TRUE(caughtAs<hf::except::IException>(e) &&
                caughtAs<hf::except::IInternalException>(e) && caughtAs<InternalException>(e) &&
                caughtAs<std::exception>(e) && caughtAs<boost::exception>(e));
    EXPECT_EQ(caughtAs<ValidationException>(e), S::validation);
    EXPECT_FALSE(caughtAs<hf::except::IUserException>(e) ||
                 caughtAs<hf::except::IMsgIDException>(e) || caughtAs<SettingsException>(e));
}

}  // namespace
}  // namespace exceptiontest
