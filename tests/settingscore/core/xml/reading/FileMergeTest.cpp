// The merges of a file's tree that spare copies: into a group without children (a product's
// first file) the file's nodes are taken over; into a tree that must survive a failure only the
// touched nodes are copied. Either must give the outcome of the plain merge (on a full copy) in
// every field a file sets, and leave the tree merged into as it was when the merge fails.
#include "ReadingFixture.hpp"

#include <settingscore/core/exception/ExportAndMergeExceptions.hpp>
#include <settingscore/core/exception/ValidationExceptions.hpp>
#include <settingscore/core/xml/SettingsFileReading.hpp>
#include <settingscore/treestore/boostany/TypeNames.hpp>

#include <boost/make_shared.hpp>
#include <boost/variant/static_visitor.hpp>

namespace readingtest {
namespace {

using NodePtr = boost::shared_ptr<sc::SettingsImpl>;

// The name of a function callout and the level its run-time default belongs to, if any.
class CalloutText : public boost::static_visitor<std::string> {
public:
    std::string operator()(const boost::mpl::void_&) const { return "none"; }
    template <class Callout>
    std::string operator()(const Callout& callout) const {
        return callout.getPackageName() + "/" + callout.getFunctionName() + belonging(callout);
    }

private:
    template <class Callout>
    static auto belonging(const Callout& callout) -> decltype(callout.getBelongingLevel()) {
        return "@" + callout.getBelongingLevel();
    }
    static std::string belonging(...) { return ""; }
};

std::string describe(const sc::ValidatorVariant& validator) {
    return std::to_string(validator.which()) + ":" + boost::apply_visitor(CalloutText(), validator);
}

std::string describe(const sc::RunTimeDefaultVariant& runTimeDefault) {
    return std::to_string(runTimeDefault.which()) + ":" +
           boost::apply_visitor(CalloutText(), runTimeDefault);
}

// The kind of a stored value; the values themselves are compared by sameValues.
std::string describe(const boost::optional<boost::any>& value) {
    if (!value) {
        return "no entry";
    }
    if (value->empty()) {
        return "empty";
    }
    return ba::typeNameOf(*value);
}

// The stored values of both trees, key by key, level by level.
bool sameValues(const NodePtr& a, const NodePtr& b) {
    for (const char* level : {"session", "user", "factory"}) {
        const auto x = NodeBuilder::getStoredValue(*a, level);
        const auto y = NodeBuilder::getStoredValue(*b, level);
        if (bool(x) != bool(y) || (x && !ba::isEqual(*x, *y))) {
            return false;
        }
    }
    const auto metaA = NodeBuilder::getMetaData(*a);
    const auto metaB = NodeBuilder::getMetaData(*b);
    if (!ba::isEqual(metaA.getMin(), metaB.getMin()) ||
        !ba::isEqual(metaA.getMax(), metaB.getMax())) {
        return false;
    }
    for (const auto& child : a->getChildren()) {
        const auto other = b->getChild(child->getName());
        if (!other ||
            !sameValues(sc::SettingsImpl::implOf(child), sc::SettingsImpl::implOf(other))) {
            return false;
        }
    }
    return true;
}

// Every field a settings file can set, of `node` and of all below it, in one text; children
// must name `node` as their parent.
std::string describeTree(const NodePtr& node) {
    std::string text = node->getName() + (node->isKey() ? " key" : " group") +
                       " visible=" + std::to_string(node->isVisible()) +
                       " readonly=" + std::to_string(node->isReadOnly()) +
                       " version=" + std::to_string(node->getProductVersion().value_or(0)) +
                       " validator=" + describe(node->getValidator());
    if (node->isKey()) {
        const auto bounds = NodeBuilder::getArraySizeBounds(*node);
        const auto metaData = NodeBuilder::getMetaData(*node);
        text += " type=" + std::to_string(NodeBuilder::getTypeCode(*node).value_or(-1)) +
                " bounds=" +
                (bounds ? std::to_string(bounds->getMinArraySize()) + ".." +
                              std::to_string(bounds->getMaxArraySize())
                        : std::string("none")) +
                " min=" + describe(boost::make_optional(metaData.getMin())) +
                " max=" + describe(boost::make_optional(metaData.getMax())) +
                " default=" + describe(NodeBuilder::getRunTimeDefault(*node)) +
                " writer=" + std::to_string(NodeBuilder::getValueWriter(*node) != nullptr) +
                " conformer=" + std::to_string(NodeBuilder::getTypeConformer(*node) != nullptr);
        for (const char* level : {"session", "user", "factory"}) {
            text += std::string(" ") + level + "=" +
                    describe(NodeBuilder::getStoredValue(*node, level));
        }
    }
    text += "\n";
    for (const auto& child : node->getChildren()) {
        if (child->getParent() != node) {
            text += "  (" + child->getName() + " names another parent)\n";
        }
        text += describeTree(sc::SettingsImpl::implOf(child));
    }
    return text;
}

NodePtr emptyProduct() {
    return boost::make_shared<sc::SettingsImpl>("p", false, boost::none, sc::ValidatorVariant(),
                                                NodePtr());
}

TEST_F(ReadingTest, TakingOverAFirstFileGivesWhatTheNodeByNodeMergeGives) {
    // Validators only where no value would meet them while the file is read: a value that
    // meets one runs it.
    const std::string text = document(
        key("plain", "<int32><value>4</value></int32>", " visible=\"true\"") +
            key("array",
                "<double minArraySize=\"0\" maxArraySize=\"0\"><value>1.5</value>"
                "<value>2</value></double>") +
            key("dropped", "<string undef=\"true\"><value>x</value></string>") +
            key("noValue", "<uint8/>") +
            key("color",
                "<validationfunc type='TOLVAN' packagename='' functionname='checkColor'/>"
                "<string><runtimedefault type='TOLVAN' packagename='' "
                "functionname='defaultColor'/></string>") +
            key("limited",
                "<int16><value>5</value><metadata><min>1</min><max>9</max></metadata></int16>",
                " readonly=\"true\"") +
            key("anything", "", " anytype=\"true\"") +
            "<settings name=\"checked\" visible=\"true\">"
            "<validationfunc type='C' packagename='lib' functionname='checkG'/></settings>"
            "<settings name=\"g\" readonly=\"true\" visible=\"true\">"
            "<settings name=\"h\" version=\"3\">" +
            key("deep", "<bool><value>true</value></bool>") + "</settings></settings>",
        " visible=\"true\" version=\"7\"");

    for (const std::string level : {"factory", "user", "session"}) {
        for (const bool takeDefinition : {true, false}) {
            SCOPED_TRACE(level + (takeDefinition ? " taking definitions" : ""));
            const NodePtr file = sc::SettingsImpl::implOf(parse(text));
            const NodePtr sameFile = sc::SettingsImpl::implOf(parse(text));
            const NodePtr takenOver = emptyProduct();
            const NodePtr merged = emptyProduct();
            {
                boost::shared_mutex privateMutex;
                sc::detail::UpgradeLock lock(privateMutex);
                ASSERT_TRUE(NodeBuilder::mergeIntoEmptyGroup(lock, *takenOver, file, level,
                                                             takeDefinition));
                merged->mergeNode(lock, sameFile, level, takeDefinition, true);
            }
            EXPECT_EQ(describeTree(takenOver), describeTree(merged));
            EXPECT_TRUE(sameValues(takenOver, merged));
            // The file's own nodes now hang below the product, nothing is left with the file,
            // and their bounds name the node that owns them.
            EXPECT_TRUE(file->getChildren().empty());
            const auto plain = takenOver->getChild("plain");
            EXPECT_EQ(NodeBuilder::getArraySizeBounds(*sc::SettingsImpl::implOf(plain))
                          ->getOwner()
                          .lock(),
                      plain);
        }
    }
}

TEST_F(ReadingTest, TakingOverIsRefusedWhereItWouldNotBeAMergeAndUndoneOnFailure) {
    const std::string text = document(key("k", "<int32><value>1</value></int32>"));
    const NodePtr file = sc::SettingsImpl::implOf(parse(text));
    boost::shared_mutex privateMutex;
    sc::detail::UpgradeLock lock(privateMutex);

    // A target with children already: the caller must merge node by node.
    const NodePtr full = emptyProduct();
    full->mergeNode(lock, sc::SettingsImpl::implOf(parse(text)), "user", true, true);
    EXPECT_FALSE(NodeBuilder::mergeIntoEmptyGroup(lock, *full, file, "user", true));
    // A key on either side.
    const NodePtr key = boost::make_shared<sc::SettingsImpl>("p", true, boost::none,
                                                             sc::ValidatorVariant(), NodePtr());
    EXPECT_FALSE(NodeBuilder::mergeIntoEmptyGroup(lock, *key, file, "user", true));
    EXPECT_FALSE(NodeBuilder::mergeIntoEmptyGroup(
        lock, *emptyProduct(), sc::SettingsImpl::implOf(file->getChild("k")), "user", true));
    EXPECT_EQ(file->getChildren().size(), 1u);

    // A product of another name: the merge of the top fails as the node-by-node one does, and
    // the file keeps its nodes.
    const NodePtr other = boost::make_shared<sc::SettingsImpl>("other", false, boost::none,
                                                               sc::ValidatorVariant(), NodePtr());
    EXPECT_THROW(NodeBuilder::mergeIntoEmptyGroup(lock, *other, file, "user", true),
                 sc::exception::ErrorMergingNodesWithDiffAttr);
    EXPECT_THROW(other->mergeNode(lock, file, "user", true, true),
                 sc::exception::ErrorMergingNodesWithDiffAttr);
    ASSERT_EQ(file->getChildren().size(), 1u);
    EXPECT_EQ(file->getChildren().front()->getParent(), file);
    EXPECT_TRUE(other->getChildren().empty());
}

// A factory file and a user file for it: the user file changes a key of one group, adds a key
// and a group, and leaves another group (with a group inside) alone.
const std::string factoryFile = document(
    "<settings name=\"a\" visible=\"true\">" +
        key("a1", "<int32><value>1</value><metadata><max>9</max></metadata></int32>",
            " visible=\"true\"") +
        key("a2", "<string><value>two</value></string>", " visible=\"true\"") +
        "</settings><settings name=\"c\" visible=\"true\"><settings name=\"d\">" +
        key("d1", "<double minArraySize=\"0\" maxArraySize=\"0\"><value>1</value></double>") +
        "</settings></settings>" +
        key("top", "<bool><value>true</value></bool>", " visible=\"true\""),
    " visible=\"true\"");

std::string userFile(const std::string& a1) {
    return document(
        "<settings name=\"a\">" + key("a1", "<int32><value>" + a1 + "</value></int32>") +
        key("a0", "<uint8><value>3</value></uint8>") + "</settings><settings name=\"e\">" +
        key("e1", "<string><value>new</value></string>") + "</settings>");
}

TEST_F(ReadingTest, AMergeCopyingOnlyWhatItTouchesGivesWhatAFullCopyGives) {
    std::wstring errors;
    bool firstMerged = false;
    const auto factory =
        sc::detail::mergeFileTree(emptyProduct(), sc::SettingsImpl::implOf(parse(factoryFile)),
                                  "factory", firstMerged, errors, L"factory file");
    const auto merged =
        sc::detail::mergeFileTree(factory, sc::SettingsImpl::implOf(parse(userFile("5"))), "user",
                                  firstMerged, errors, L"user file");
    EXPECT_EQ(errors, L"");

    // The plain way: the factory file merged node by node, the whole tree copied, the user
    // file merged into the copy.
    NodePtr expected;
    {
        boost::shared_mutex privateMutex;
        sc::detail::UpgradeLock lock(privateMutex);
        const NodePtr plainFactory = emptyProduct();
        plainFactory->mergeNode(lock, sc::SettingsImpl::implOf(parse(factoryFile)), "factory", true,
                                true);
        expected = plainFactory->deepCopySubtree(lock);
        expected->mergeNode(lock, sc::SettingsImpl::implOf(parse(userFile("5"))), "user", false,
                            true);
    }
    EXPECT_EQ(describeTree(merged), describeTree(expected));
    EXPECT_TRUE(sameValues(merged, expected));
    EXPECT_EQ(NodeBuilder::getStoredValue(*sc::SettingsImpl::implOf(merged->getNodeByPath("a.a1")),
                                          "user")
                  .value_or(boost::any())
                  .type(),
              typeid(int));

    // Untouched subtrees were not copied, only handed over; touched nodes were.
    EXPECT_EQ(merged->getChild("c"), factory->getChild("c"));
    EXPECT_EQ(merged->getChild("c")->getParent(), merged);
    EXPECT_EQ(merged->getNodeByPath("a.a2"), factory->getNodeByPath("a.a2"));
    EXPECT_NE(merged->getChild("a"), factory->getChild("a"));
    EXPECT_NE(merged->getNodeByPath("a.a1"), factory->getNodeByPath("a.a1"));
}

TEST_F(ReadingTest, AFailedMergeLeavesTheTreeAsItWasAndAPartialOneClaimsWhatItShares) {
    std::wstring errors;
    bool firstMerged = false;
    const auto factory =
        sc::detail::mergeFileTree(emptyProduct(), sc::SettingsImpl::implOf(parse(factoryFile)),
                                  "factory", firstMerged, errors, L"factory file");
    const std::string before = describeTree(factory);

    // 50 is above a1's maximum: the merge fails (the failure is thrown on, as the caller
    // reports it) after a0 of the same group was merged into the copy already.
    EXPECT_THROW(sc::detail::mergeFileTree(factory, sc::SettingsImpl::implOf(parse(userFile("50"))),
                                           "user", firstMerged, errors, L"user file"),
                 sc::exception::ValueIsNotInRange);
    EXPECT_EQ(describeTree(factory), before);
    EXPECT_FALSE(factory->getNodeByPath("a.a0"));

    // A second run-time default for a key ends the merge but keeps what came before it ("a"
    // sorts before "top"), and the kept tree owns every node in it.
    const std::string withDefault =
        "<string><runtimedefault type='TOLVAN' packagename='' functionname='f'/></string>";
    errors.clear();
    const auto first = sc::detail::mergeFileTree(
        factory,
        sc::SettingsImpl::implOf(parse(document(key("z", withDefault, " visible=\"true\"")))),
        "user", firstMerged, errors, L"first");
    ASSERT_EQ(errors, L"");
    const auto partial = sc::detail::mergeFileTree(
        first,
        sc::SettingsImpl::implOf(
            parse(document("<settings name=\"a\">" + key("a1", "<int32><value>7</value></int32>") +
                           "</settings>" + key("z", withDefault)))),
        "user", firstMerged, errors, L"second");
    EXPECT_THAT(hf::i18n::to_string(errors), ::testing::StartsWith("second\t"));
    ASSERT_NE(partial, first);
    EXPECT_TRUE(storesValue(partial, "a.a1", 7)) << describeTree(partial);
    EXPECT_EQ(describeTree(partial).find("names another parent"), std::string::npos)
        << describeTree(partial);
    EXPECT_EQ(partial->getChild("c")->getParent(), partial);
}

}  // namespace
}  // namespace readingtest
