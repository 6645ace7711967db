// The shape of written settings files: the document element, groups and keys in order, the
// ancestors opened around a node written alone with their validators repeated, the node
// attributes, the level check, and two threads writing one product at once.
#include "WritingFixture.hpp"

#include <settingscore/core/exception/Exceptions.hpp>

#include <fstream>
#include <future>
#include <thread>

namespace writingtest {
namespace {

const std::string productText =
    documentStart(R"(<settings name="prod" visible="true" version="7")") +
    R"(    <validationfunc type='TOLVAN' packagename='pv' functionname='check'/>
    <key name="alpha">
        <string>
            <value><![CDATA[hi]]></value>
        </string>
    </key>
    <validationfunc type='TOLVAN' packagename='pv' functionname='check'/>
    <key name="zeta">
        <double>
            <value>2.5</value>
        </double>
    </key>
    <validationfunc type='TOLVAN' packagename='pv' functionname='check'/>
    <settings name="a">
    </settings>
    <validationfunc type='TOLVAN' packagename='pv' functionname='check'/>
    <settings name="beta">
    <validationfunc type='TOLVAN' packagename='pv' functionname='check'/>
        <key name="k">
            <int32>
                <value>42</value>
            </int32>
        </key>
    <validationfunc type='TOLVAN' packagename='pv' functionname='check'/>
        <settings name="inner">
    <validationfunc type='TOLVAN' packagename='pv' functionname='check'/>
            <validationfunc type='C' packagename='libv' functionname='innerCheck'/>
            <key name="deep">
                <bool>
                    <value>1</value>
                </bool>
            </key>
        </settings>
    </settings>
</settings>
)";

TEST_F(WritingTest, ProductWritesKeysBeforeGroupsInNameOrderWithValidatorsRepeated) {
    buildProduct();
    EXPECT_EQ(productText, written(*product_, "user"));
    // The walk keeps no state in the nodes: a second write gives the same text.
    EXPECT_EQ(productText, written(*product_, "user"));

    // "factory" holds nothing: every type element is empty, but none is undefined, since each
    // key has an effective value.
    const std::string factory = written(*product_, "factory");
    EXPECT_EQ(std::string::npos, factory.find("<value>"));
    EXPECT_EQ(std::string::npos, factory.find("undef"));
    EXPECT_NE(std::string::npos, factory.find("\n            <int32>\n            </int32>\n"));
}

TEST_F(WritingTest, NodeWrittenAloneOpensItsAncestorsAndClosesThem) {
    buildProduct();
    const std::string deepAlone =
        documentStart(R"(<settings name="prod" visible="true" version="7")") +
        R"(    <validationfunc type='TOLVAN' packagename='pv' functionname='check'/>
    <settings name="beta">
        <settings name="inner">
            <validationfunc type='C' packagename='libv' functionname='innerCheck'/>
            <key name="deep">
                <bool>
                    <value>1</value>
                </bool>
            </key>
        </settings>
    </settings>
</settings>
)";
    EXPECT_EQ(deepAlone, written(*deep_, "user"));

    // A group alone: its ancestors once, then its own subtree, which repeats them again.
    const std::string betaText = written(*beta_, "user");
    const std::string betaStart =
        productText.substr(0, productText.find("    <key name=\"alpha\""));
    const std::string betaBody =
        productText.substr(productText.find("    <settings name=\"beta\""));
    EXPECT_EQ(betaStart + betaBody, betaText);
}

TEST_F(WritingTest, AttributesVisibleVersionReadOnlyAndAnyType) {
    auto top = makeWNode("top", false, {}, false, SettingsImpl::ReadOnly, 4u);
    auto inherit = makeWNode("inherit", false, top, true, SettingsImpl::InheritReadOnly, 9u);
    makeWNode("open", false, top);
    makeWNode("rk", true, inherit, false, SettingsImpl::ReadOnly)->declare<int>();
    // A key never inherits the read-only state, and a key without a type is any-type.
    makeWNode("ik", true, inherit, true, SettingsImpl::InheritReadOnly);
    EXPECT_EQ(documentStart(R"(<settings name="top" version="4" readonly="true")") +
                  R"(    <settings name="inherit" visible="true" readonly="true">
        <key name="ik" visible="true" anytype="true">
        </key>
        <key name="rk" readonly="true">
            <int32 undef="true">
            </int32>
        </key>
    </settings>
    <settings name="open">
    </settings>
</settings>
)",
              written(*top, "user"));

    // Only the document element carries its version.
    const std::string inner = written(*inherit, "user");
    EXPECT_EQ(std::string::npos, inner.find("version=\"9\""));
    EXPECT_NE(std::string::npos, inner.find("<settings name=\"inherit\" visible=\"true\" "
                                            "readonly=\"true\">\n"));
    // Names go out as they stand, with no escaping.
    auto odd = makeWNode("a&b<c", false);
    EXPECT_EQ(documentStart(R"(<settings name="a&b<c")") + "</settings>\n", written(*odd, "user"));
}

TEST_F(WritingTest, LevelMustBeKnownAndNoLevelWritesEffectiveStoredValues) {
    auto group = makeWNode("g", false);
    auto key = makeWNode("k", true, group);
    key->declare<int>().put("factory", 1).put("user", 2).runTimeDefault("fn", "user");
    std::ostringstream out;
    detail::SharedLock lock(detail::rootMutex());
    EXPECT_THROW(group->writeSettings(lock, out, "User"),
                 settings::core::exception::UnSupportedLevel);
    EXPECT_THROW(key->writeSettings(lock, out, "workgroup"),
                 settings::core::exception::UnSupportedLevel);
    EXPECT_EQ("", out.str());
    lock.unlock();

    // No level: the strongest stored value; a run-time default belongs to no level here.
    const std::string effective = written(*group, "");
    EXPECT_NE(std::string::npos, effective.find("        <int32>\n            <value>2</value>\n"));
    EXPECT_EQ(std::string::npos, effective.find("runtimedefault"));
    key->put("session", 3);
    EXPECT_NE(std::string::npos, written(*group, "").find("<value>3</value>"));
}

TEST_F(WritingTest, KeysTypedThroughSetAnyWriteTheTypeOfTheirFirstValue) {
    auto group = boost::dynamic_pointer_cast<SettingsImpl>(
        TSettings::createSettingsNode("g", false, false, {}, false));
    for (const char* name : {"count", "ratios", "loose"}) {
        TSettings::createSettingsNode(name, true, false, {}, false)->setParent(group);
    }
    group->setAny("count", 5, "user");
    group->setAny("ratios", std::vector<double>{0.5, -0.25}, "user");
    EXPECT_EQ(documentStart(R"(<settings name="g")") + R"(    <key name="count">
        <int32>
            <value>5</value>
        </int32>
    </key>
    <key name="loose" anytype="true">
    </key>
    <key name="ratios">
        <double minArraySize="0" maxArraySize="2">
            <value>0.5</value>
            <value>-0.25</value>
        </double>
    </key>
</settings>
)",
              written(*group, "user"));
}

TEST_F(WritingTest, TwoThreadsWritingOneProductAtOnceGetTheSameText) {
    buildProduct();
    constexpr int rounds = 200;
    std::promise<void> start;
    const std::shared_future<void> go = start.get_future().share();
    auto writer = [&](const std::filesystem::path& file) {
        go.wait();
        int wrong = 0;
        for (int round = 0; round < rounds; ++round) {
            std::ofstream out(file, std::ios::binary | std::ios::trunc);
            detail::SharedLock lock(detail::rootMutex());
            product_->writeSettings(lock, out, "user");
            out.close();
            wrong += testsupport::readFile(file) != productText ? 1 : 0;
        }
        return wrong;
    };
    auto first = std::async(std::launch::async, writer, dir_.path() / "first.settings");
    auto second = std::async(std::launch::async, writer, dir_.path() / "second.settings");
    start.set_value();
    EXPECT_EQ(0, first.get());
    EXPECT_EQ(0, second.get());
}

}  // namespace
}  // namespace writingtest
