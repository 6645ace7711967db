// The failure classes: representative ones of the catalogue (every argument kind, the odd texts
// verbatim), ValidationException as a sliced copy, SettingsException, and the nodes they hold.
#include <platform/hf/except/IException.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/SettingsLevel.hpp>

#include <boost/any.hpp>
#include <boost/exception_ptr.hpp>
#include <boost/make_shared.hpp>
#include <boost/weak_ptr.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace exceptiontest {
namespace {

using namespace settings::core;
using namespace settings::core::exception;
namespace except = hf::except;

// A node handle aliasing a dummy object, never dereferenced: the failures only hold the pointer.
SettingsPtr mutableNode(boost::shared_ptr<int> owner = boost::make_shared<int>(0)) {
    return SettingsPtr(owner, reinterpret_cast<Settings*>(owner.get()));
}

template <class E>
boost::exception_ptr captured(const E& e) {
    try {
        throw e;
    } catch (...) {
        return boost::current_exception();
    }
}

// Captures `original` on another thread and rethrows it here; returns the copy caught by its
// concrete class (empty, with a failure, when it arrives as another class).
template <class E>
std::optional<E> acrossExceptionPtr(const E& original) {
    boost::exception_ptr copy;
    std::thread([&] { copy = captured(original); }).join();
    try {
        boost::rethrow_exception(copy);
    } catch (const E& e) {
        EXPECT_EQ(typeid(e), typeid(E)) << "rethrown as a subclass";
        return e;
    } catch (...) {
        ADD_FAILURE() << "lost its class across an exception_ptr";
    }
    return std::nullopt;
}

template <class Catch, class E>
bool caughtAs(const E& e) {
    try {
        throw e;
    } catch (const Catch&) {
        return true;
    } catch (...) {
        return false;
    }
}

// The fixed `what` and the `fields` on the original and on a copy, and the bases. A validation
// failure (validationCode >= 0) carries its code and its text unless `validatorMsg` is given.
template <class E, class Fields>
void checkCatalogClass(const E& e, const char* what, int validationCode, Fields fields,
                       const std::wstring& validatorMsg = {}) {
    SCOPED_TRACE(typeid(E).name());
    const std::optional<E> copy = acrossExceptionPtr(e);
    ASSERT_TRUE(copy.has_value());
    for (const E* x : {&e, &*copy}) {
        fields(*x);
        // One override must serve both interfaces that declare `what`.
        EXPECT_STREQ(static_cast<const except::IException&>(*x).what(), what);
        EXPECT_STREQ(static_cast<const std::exception&>(*x).what(), what);
        if constexpr (std::is_base_of_v<ValidationException, E>) {
            EXPECT_EQ(static_cast<int>(x->getErrorCode()), validationCode);
            EXPECT_EQ(x->getErrorMsg(), validatorMsg.empty()
                                            ? std::wstring(what, what + std::strlen(what))
                                            : validatorMsg);
        }
    }
    EXPECT_TRUE(caughtAs<except::IInternalException>(e) && caughtAs<InternalException>(e) &&
                caughtAs<boost::exception>(e));
    EXPECT_EQ(caughtAs<ValidationException>(e), validationCode >= 0);
    EXPECT_FALSE(caughtAs<except::IUserException>(e) || caughtAs<except::IMsgIDException>(e) ||
                 caughtAs<SettingsException>(e));
}

TEST(CatalogExceptionTest, KeepsClassFieldsAndFixedTextAcrossCopies) {
    const SettingsPtr m = mutableNode();
    const ConstSettingsPtr n = mutableNode();
    checkCatalogClass(NoSuchKey(n, "a.b"), "The request setting does not exist.", -1,
                      [&](const auto& e) {
                          EXPECT_TRUE(e.getObjectInvovled() == n && e.getInputName() == "a.b");
                      });
    checkCatalogClass(ErrorReadingSettingsData(ErrorReadingSettingsData::SaxError, L"w\u00e4rt"),
                      "Error reading setting's value for various reasons, please refer to "
                      "detailedInfo for more information.",
                      -1, [](const auto& e) {
                          EXPECT_TRUE(e.getErrorCode() == ErrorReadingSettingsData::SaxError &&
                                      e.getDetailErrorMsg() == L"w\u00e4rt");
                      });
    checkCatalogClass(DataArraySizeOutOfRange(n, 1, 3, 7), "The array size is out of range ", 0,
                      [&](const auto& e) {
                          EXPECT_EQ(e.getCausingObject(), n);
                          EXPECT_EQ(std::make_tuple(1u, 3u, 7u),
                                    std::make_tuple(e.getMinArraySize(), e.getMaxArraySize(),
                                                    e.getActualArraySize()));
                      });
    checkCatalogClass(
        ExceptionFromValidationFunction(n, "key", boost::any(42), "fn", "pkg", L"says no"),
        "Exception thrown by the validation function.", 6,
        [&](const auto& e) {
            EXPECT_TRUE(e.getCausingObject() == n && boost::any_cast<int>(e.getValue()) == 42);
            EXPECT_EQ(e.getKeyName() + e.getFunctionName() + e.getPackageName(), "keyfnpkg");
        },
        L"says no");
    checkCatalogClass(CannotMergeWithSettingsRoot(n),
                      "Users can only  merge settings with product node or sub-product node. "
                      "Users cannot merge settings directly with Settings root.",
                      -1, [&](const auto& e) { EXPECT_EQ(e.getObjectInvovled(), n); });
    checkCatalogClass(
        NoFileWritePermission(m, SettingsLevel("user", {}, true, 1, false, false, true), L"/f",
                              L"info", L"third", "user"),
        "Cannot write to the level specified. You may not have write permission on that level.", -1,
        [&](const auto& e) {
            EXPECT_TRUE(e.getCausingObject() == m && e.getLevelName() == "user");
            EXPECT_EQ(e.getCausingFilePath() + e.getAdditionalInfo(), L"/finfo");
        });
}

// Only reachable as a sliced copy, which must still cross an exception_ptr as itself.
TEST(ValidationExceptionTest, SlicedCopyTravelsAsItself) {
    const ConstSettingsPtr key = mutableNode();
    const ValidationException sliced =
        ExceptionFromValidationFunction(key, "k", boost::any(1), "f", "p", L"validator says no");
    const std::optional<ValidationException> copy = acrossExceptionPtr(sliced);
    ASSERT_TRUE(copy.has_value());
    EXPECT_TRUE(copy->getCausingObject() == key &&
                copy->getErrorCode() == ValidationErrorCode::ValidationFunctionFailed);
    EXPECT_EQ(copy->getErrorMsg(), L"validator says no");
    EXPECT_STREQ(copy->what(), InternalException().what()) << "no text of its own";
}

TEST(SettingsExceptionTest, TextIsTheMessageAndSurvivesCopies) {
    const SettingsException first("MyLib:range", "value 7 is above 5\n", "RangeKey");
    const std::optional<SettingsException> copy = acrossExceptionPtr(first);
    ASSERT_TRUE(copy.has_value());
    EXPECT_STREQ(copy->what(), "value 7 is above 5\n");
    EXPECT_EQ(copy->msgId() + "/" + copy->exceptionKey(), "MyLib:range/RangeKey");
    // The text must belong to the copy, not point into the original.
    EXPECT_NE(static_cast<const void*>(copy->what()), static_cast<const void*>(first.what()));
    // Validator libraries' failures are caught by the callout frame as host exceptions.
    EXPECT_TRUE(caughtAs<except::IException>(first) && caughtAs<InternalException>(first));
    EXPECT_FALSE(caughtAs<ValidationException>(first) || caughtAs<except::IMsgIDException>(first));
}

TEST(CatalogNodeLifetimeTest, CapturedFailureKeepsEveryNodeAlive) {
    auto a = boost::make_shared<int>(0), b = boost::make_shared<int>(0),
         c = boost::make_shared<int>(0);
    const boost::weak_ptr<int> watched[] = {a, b, c};
    // `a` is handed back by no accessor; `c` is held by the ValidationException base.
    std::vector<boost::exception_ptr> copies{
        captured(CanOnlyMergeTreeNodeWithStandaloneNode(mutableNode(a), mutableNode(b))),
        captured(ExceptionFromValidationFunction(mutableNode(c), "k", {}, "f", "p", L""))};
    a.reset(), b.reset(), c.reset();
    const auto expired = [](const boost::weak_ptr<int>& w) { return w.expired(); };
    EXPECT_TRUE(std::none_of(watched, watched + 3, expired)) << "a node was dropped";
    copies.clear();
    EXPECT_TRUE(std::all_of(watched, watched + 3, expired));
}

}  // namespace
}  // namespace exceptiontest
