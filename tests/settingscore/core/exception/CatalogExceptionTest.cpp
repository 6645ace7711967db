// Every class of the failure catalogue, one sample each: the fields come back as given, survive
// a clone and a copy across an exception_ptr with the exact class, the `what` text is the fixed
// one through every interface, and the class is caught through the bases it promises only.
#include "CatalogSamples.hpp"

#include <platform/hf/except/IException.hpp>

#include <gtest/gtest.h>

#include <memory>
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

        // clone() called through the frame's base, as boost does.
        const boost::exception_detail::clone_base& asBase = original;
        std::unique_ptr<const boost::exception_detail::clone_base> clone(asBase.clone());
        const E* cloned = dynamic_cast<const E*>(clone.get());
        ASSERT_NE(cloned, nullptr);
        EXPECT_EQ(typeid(*cloned), typeid(E));
        EXPECT_TRUE(S::fields(*cloned) == expected);

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
    EXPECT_TRUE(caughtAs<hf::except::IException>(e));
    EXPECT_TRUE(caughtAs<hf::except::IInternalException>(e));
    EXPECT_TRUE(caughtAs<InternalException>(e));
    EXPECT_TRUE(caughtAs<std::exception>(e));
    EXPECT_TRUE(caughtAs<boost::exception>(e));
    EXPECT_EQ(caughtAs<ValidationException>(e), S::validation);
    EXPECT_FALSE(caughtAs<hf::except::IUserException>(e));
    EXPECT_FALSE(caughtAs<hf::except::IMsgIDException>(e));
    EXPECT_FALSE(caughtAs<SettingsException>(e));
}

}  // namespace
}  // namespace exceptiontest
