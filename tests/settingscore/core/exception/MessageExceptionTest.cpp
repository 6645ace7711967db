// The message-id failures, one per key: they carry the catalogue name, the key and the
// arguments in order across an exception_ptr, and are user failures, not internal ones.
#include "ExceptionTestSupport.hpp"
#include "MessageKeys.hpp"

#include <settingscore/core/exception/Exceptions.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace exceptiontest {
namespace {

// Argument i: narrow UTF-8 at even positions, wide at odd ones; both arrive wide.
std::wstring expectedArg(std::size_t i) {
    return L"arg\u00f6-" + std::to_wstring(i);
}
template <std::size_t I>
auto argAt() {
    if constexpr (I % 2 == 0) {
        return std::string("arg\xc3\xb6-") + std::to_string(I);
    } else {
        return expectedArg(I);
    }
}
template <class Key, std::size_t... I>
auto makeWithArgs(std::index_sequence<I...>) {
    return settings::core::makeMessageException<Key>(argAt<I>()...);
}

template <class Key>
class MessageExceptionTest : public ::testing::Test {};
TYPED_TEST_SUITE(MessageExceptionTest, AllKeys);

TYPED_TEST(MessageExceptionTest, CarriesCatalogueKeyAndArgumentsAsAUserFailure) {
    using Key = TypeParam;
    const std::string key = keyName(typeid(Key));
    std::vector<std::wstring> args;
    for (std::size_t i = 0; i < Key::argCount; ++i) {
        args.push_back(expectedArg(i));
    }

    const auto original = makeWithArgs<Key>(std::make_index_sequence<Key::argCount>());
    const auto copy = acrossExceptionPtr(original);
    ASSERT_TRUE(copy.has_value());
    const hf::resource::BaseMsgID& id = copy->get_message_id();
    EXPECT_EQ(id.getCatalogName(), "TOLVAN:settings:core");
    EXPECT_EQ(id.getKey(), key);
    EXPECT_EQ(id.getArgs(), args);
    EXPECT_EQ(copy->get_error_id_string(), "TOLVAN:settings:core:" + key);

    EXPECT_TRUE(caughtAs<hf::except::IMsgIDException>(original));
    EXPECT_TRUE(caughtAs<hf::except::IUserException>(original));
    EXPECT_TRUE(caughtAs<hf::except::IException>(original));
    EXPECT_TRUE(caughtAs<std::exception>(original));
    EXPECT_FALSE(caughtAs<settings::core::exception::InternalException>(original));
    EXPECT_FALSE(caughtAs<hf::except::IInternalException>(original));
}

}  // namespace
}  // namespace exceptiontest
