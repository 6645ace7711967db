// The classes outside the fixed-text pattern: ValidationException as a class of its own (only
// reachable as a sliced copy), SettingsException with its varying text, and the rule that a
// failure keeps the nodes it names alive.
#include "CatalogSamples.hpp"

#include <platform/hf/except/IException.hpp>

#include <boost/weak_ptr.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <vector>

namespace exceptiontest {
namespace {

// Published numbers: files and callers store and compare them.
static_assert(ErrorReadingSettingsData::XmlReaderCreationFailed == 0 &&
                  ErrorReadingSettingsData::SaxServiceNotFound == 1 &&
                  ErrorReadingSettingsData::ParseError == 4 &&
                  ErrorReadingSettingsData::SaxError == 5 &&
                  ErrorReadingSettingsData::MergingIncludedFilesFailed == 6 &&
                  ErrorReadingSettingsData::ProductNodeLoadingFailed == 7,
              "ErrorReadingSettingsData codes are fixed");

TEST(ValidationExceptionTest, SlicedCopyTravelsAsItselfAndASubclassKeepsItsClass) {
    const ConstSettingsPtr key = node();
    const ValueIsNotInRange full(key, L"12", L"0", L"10");
    const ExceptionFromValidationFunction fromValidator(key, "k", boost::any(1), "f", "p",
                                                        L"validator says no");
    const std::string baseText = InternalException().what();
    const std::tuple<ValidationException, int, std::wstring> cases[] = {
        {ValidationException(full), 3, ascii(ValueIsNotInRange::whatText)},
        {ValidationException(fromValidator), 6, L"validator says no"},
    };
    for (const auto& [sliced, code, errorMsg] : cases) {
        SCOPED_TRACE(code);
        const std::optional<ValidationException> copy = acrossExceptionPtr(sliced);
        ASSERT_TRUE(copy.has_value());
        EXPECT_EQ(copy->getCausingObject(), key);
        EXPECT_EQ(static_cast<int>(copy->getErrorCode()), code);
        EXPECT_EQ(copy->getErrorMsg(), errorMsg);
        EXPECT_EQ(copy->what(), baseText) << "ValidationException has no text of its own";
    }

    // Caught and captured through the base, a subclass keeps its dynamic class.
    boost::exception_ptr captured;
    try {
        throw DataTypeNotMatch(node(), "double", "int32");
    } catch (const ValidationException&) {
        captured = boost::current_exception();
    }
    try {
        boost::rethrow_exception(captured);
    } catch (const ValidationException& e) {
        EXPECT_EQ(typeid(e), typeid(DataTypeNotMatch));
        EXPECT_EQ(e.getErrorCode(), ValidationErrorCode::TypeMismatch);
        EXPECT_STREQ(e.what(), DataTypeNotMatch::whatText);
    }
}

TEST(SettingsExceptionTest, TextIsTheMessageAndSurvivesCopies) {
    const SettingsException first("MyLib:range", "value 7 is above 5\n", "RangeKey");
    EXPECT_STREQ(first.what(), "value 7 is above 5\n");

    const std::optional<SettingsException> copy = acrossExceptionPtr(first);
    ASSERT_TRUE(copy.has_value());
    EXPECT_STREQ(copy->what(), "value 7 is above 5\n");
    EXPECT_EQ(copy->msgId(), "MyLib:range");
    EXPECT_EQ(copy->exceptionKey(), "RangeKey");
    // The text must belong to the copy, not point into the original.
    EXPECT_NE(static_cast<const void*>(copy->what()), static_cast<const void*>(first.what()));

    // Validator libraries' failures are caught by the callout frame as host exceptions.
    EXPECT_TRUE(caughtAs<hf::except::IException>(first) && caughtAs<InternalException>(first) &&
                caughtAs<std::exception>(first));
    EXPECT_FALSE(caughtAs<ValidationException>(first) ||
                 caughtAs<hf::except::IMsgIDException>(first));
}

TEST(CatalogNodeLifetimeTest, FailureAndItsCopiesKeepEveryNodeAlive) {
    std::vector<boost::weak_ptr<int>> watched;
    const auto tracked = [&watched] {
        auto owner = boost::make_shared<int>(0);
        watched.push_back(owner);
        return mutableNode(owner);
    };
    const auto alive = [&watched] {
        return std::count_if(watched.begin(), watched.end(),
                             [](const boost::weak_ptr<int>& w) { return !w.expired(); });
    };
    // Among them nodes that no accessor hands back, and a mutable one. The originals are gone
    // once the vector is made.
    std::vector<boost::exception_ptr> copies{
        captured(CanOnlyMergeTreeNodeWithStandaloneNode(tracked(), tracked())),
        captured(NoFileWritePermission(tracked(), levelStandIn(), L"f", L"a", L"t", "user")),
        captured(ExceptionFromValidationFunction(tracked(), "k", {}, "f", "p", L"m")),
        captured(NoSuchKey(tracked(), "k"))};
    ASSERT_EQ(watched.size(), 5u);
    EXPECT_EQ(5, alive()) << "a captured failure dropped one of its nodes";
    copies.resize(1);  // the first copy's two nodes live on, the others are gone
    EXPECT_EQ(2, alive());
    EXPECT_FALSE(watched[0].expired() || watched[1].expired());
    copies.clear();
    EXPECT_EQ(0, alive());
}

}  // namespace
}  // namespace exceptiontest
