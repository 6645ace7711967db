// The one merge under its policies: taking over a file's nodes and copying only the touched ones
// give what the plain merge gives, and a copy-on-write merge leaves the tree alone when it fails.
#include "ReadingFixture.hpp"

#include <settingscore/core/detail/MergePolicy.hpp>
#include <settingscore/core/exception/ValidationExceptions.hpp>
#include <settingscore/core/xml/SettingsFileReading.hpp>

#include <boost/make_shared.hpp>

namespace readingtest {
namespace {

NodePtr group(const std::string& name, bool isKey = false) {
    return boost::make_shared<sc::SettingsImpl>(name, isKey, boost::none, sc::ValidatorVariant(),
                                                NodePtr());
}

// A factory file setting every field a file can set (validators only where no value would run
// them), and a user file that changes a key, adds a key and a group, and leaves "c" alone.
const std::string factoryFile = document(
    "<settings name=\"a\" visible=\"true\">" +
        key("a1", "<int32><value>1</value><metadata><max>9</max></metadata></int32>",
            " visible=\"true\"") +
        key("a2", "<string><value>two</value></string>", " readonly=\"true\"") +
        "</settings><settings name=\"c\" readonly=\"true\"><settings name=\"d\" visible=\"true\">" +
        key("d1", "<double minArraySize=\"0\" maxArraySize=\"0\"><value>1</value></double>") +
        "</settings></settings><settings name=\"checked\" version=\"3\">"
        "<validationfunc type='C' packagename='lib' functionname='checkG'/></settings>" +
        key("color",
            "<validationfunc type='TOLVAN' packagename='' functionname='checkColor'/>"
            "<string><runtimedefault type='TOLVAN' packagename='' functionname='f'/>"
            "</string>") +
        key("dropped", "<string undef=\"true\"><value>x</value></string>") +
        key("anything", "", " anytype=\"true\"") + key("noValue", "<uint8/>") +
        key("top", "<bool><value>true</value></bool>", " visible=\"true\""),
    " visible=\"true\" version=\"7\"");

std::string userFile(const std::string& a1) {
    return document(
        "<settings name=\"a\">" + key("a1", "<int32><value>" + a1 + "</value></int32>") +
        key("a0", "<uint8><value>3</value></uint8>") + "</settings><settings name=\"e\">" +
        key("e1", "<string><value>new</value></string>") + "</settings>");
}

class FileMergeTest : public ReadingTest {
protected:
    NodePtr tree(const std::string& text) { return sc::SettingsImpl::implOf(parse(text)); }

    // mergeFileTree of `text` into `into` at `level`, its error lines added to errors_.
    NodePtr mergeFile(const NodePtr& into, const std::string& text, const std::string& level,
                      const std::wstring& file) {
        sc::detail::MergePolicy policy;
        policy.takeOver = policy.copyOnWrite = true;
        policy.runValidators = false;
        return sc::detail::mergeFileTree(into, tree(text), level, firstMerged_, errors_, file,
                                         policy);
    }

    boost::shared_mutex privateMutex_;
    sc::detail::UpgradeLock lock_{privateMutex_};
    bool firstMerged_ = false;
    std::wstring errors_;
};

TEST_F(FileMergeTest, TakingOverAFirstFileGivesWhatTheNodeByNodeMergeGives) {
    for (const std::string level : {"factory", "user", "session"}) {
        for (const bool takeDefinition : {true, false}) {
            SCOPED_TRACE(level + (takeDefinition ? " taking definitions" : ""));
            const NodePtr file = tree(factoryFile);
            const NodePtr takenOver = group("p");
            const NodePtr merged = group("p");
            sc::detail::MergePolicy takeOver;
            takeOver.takeOver = true;
            takenOver->mergeNode(lock_, file, level, takeDefinition, true, takeOver);
            merged->mergeNode(lock_, tree(factoryFile), level, takeDefinition, true, {});
            EXPECT_EQ(describeTree(takenOver), describeTree(merged));
            EXPECT_TRUE(sameValues(takenOver, merged));
            // The bounds name the node that owns them now.
            const auto top = sc::SettingsImpl::implOf(takenOver->getChild("top"));
            EXPECT_EQ(NodeBuilder::getArraySizeBounds(*top)->getOwner().lock(), top);
        }
    }
}

TEST_F(FileMergeTest, AMergeCopyingOnlyWhatItTouchesGivesThePlainOutcomeOrLeavesTheTreeAlone) {
    const auto factory = mergeFile(group("p"), factoryFile, "factory", L"factory file");
    const std::string before = describeTree(factory);
    // 50 is above a1's maximum: the merge fails after a0 was merged into the copy already.
    EXPECT_THROW(mergeFile(factory, userFile("50"), "user", L"user file"),
                 sc::exception::ValueIsNotInRange);
    EXPECT_EQ(describeTree(factory), before);

    const auto merged = mergeFile(factory, userFile("5"), "user", L"user file");
    EXPECT_EQ(errors_, L"");
    const NodePtr expected = group("p");
    expected->mergeNode(lock_, tree(factoryFile), "factory", true, true, {});
    expected->mergeNode(lock_, tree(userFile("5")), "user", false, true, {});
    EXPECT_EQ(describeTree(merged), describeTree(expected));
    EXPECT_TRUE(sameValues(merged, expected));
    // Untouched subtrees were handed over, not copied; touched nodes were copied.
    EXPECT_EQ(merged->getChild("c"), factory->getChild("c"));
    EXPECT_NE(merged->getNodeByPath("a.a1"), factory->getNodeByPath("a.a1"));

    // A second run-time default ends the merge but keeps what came before ("a" < "color").
    const auto partial =
        mergeFile(merged,
                  document("<settings name=\"a\">" + key("a1", "<int32><value>7</value></int32>") +
                           "</settings>" +
                           key("color",
                               "<string><runtimedefault type='TOLVAN' packagename='' "
                               "functionname='g'/></string>")),
                  "user", L"second");
    EXPECT_THAT(hf::i18n::to_string(errors_), ::testing::StartsWith("second\t"));
    EXPECT_TRUE(storesValue(partial, "a.a1", 7));
    EXPECT_EQ(describeTree(partial).find("names another parent"), std::string::npos)
        << describeTree(partial);
}

}  // namespace
}  // namespace readingtest
