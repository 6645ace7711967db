// The shape of written settings files: the document element, groups and keys in order, the
// ancestors opened around a node written alone with their validators repeated, the node
// attributes, and two threads writing one product at once.
#include "WritingFixture.hpp"

#include <settingscore/core/callouts/TValidator.hpp>

#include <fstream>
#include <future>

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

// On the tree: product "prod" (visible, version 7, a validator), keys "alpha" and "zeta", group
// "beta" with key "k" and group "inner" (its own validator) holding key "deep". Every key has a
// "user" value. Each kind comes out in name order, keys first, whatever the order of creation.
class ProductWritingTest : public WritingTest {
protected:
    ProductWritingTest()
        : product_(makeWNode("prod", false, {}, true, SettingsImpl::Writable, 7u)) {
        product_->setParent(root());
        auto zeta = makeWNode("zeta", true, product_);
        beta_ = makeWNode("beta", false, product_);
        auto alpha = makeWNode("alpha", true, product_);
        auto k = makeWNode("k", true, beta_);
        auto inner = makeWNode("inner", false, beta_);
        deep_ = makeWNode("deep", true, inner);
        product_->validate(sc::TValidator("pv", "check"));
        inner->validate(sc::CValidator("libv", "innerCheck"));
        alpha->declare<std::wstring>().put("user", std::wstring(L"hi"));
        zeta->declare<double>().put("user", 2.5);
        k->declare<int>().put("user", 42);
        deep_->declare<bool>().put("user", true);
    }

    boost::shared_ptr<WNode> product_, beta_, deep_;
};

TEST_F(ProductWritingTest, ProductWritesKeysBeforeGroupsInNameOrderWithValidatorsRepeated) {
    EXPECT_EQ(productText, written(*product_, "user"));
    // "factory" holds nothing: every type element is empty, but none is undefined, since each
    // key has an effective value.
    const std::string factory = written(*product_, "factory");
    EXPECT_EQ(std::string::npos, factory.find("<value>"));
    EXPECT_EQ(std::string::npos, factory.find("undef"));
    EXPECT_NE(std::string::npos, factory.find("\n            <int32>\n            </int32>\n"));
}

TEST_F(ProductWritingTest, NodeWrittenAloneOpensItsAncestorsAndClosesThem) {
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
    makeWNode("open", false, top);
    auto inherit = makeWNode("inherit", false, top, true, SettingsImpl::InheritReadOnly, 9u);
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
    EXPECT_EQ(std::string::npos, written(*inherit, "user").find("version=\"9\""));
    // Names go out as they stand, with no escaping.
    auto odd = makeWNode("a&b<c", false);
    EXPECT_EQ(documentStart(R"(<settings name="a&b<c")") + "</settings>\n", written(*odd, "user"));
}

TEST_F(ProductWritingTest, TwoThreadsWritingOneProductAtOnceGetTheSameText) {
    std::promise<void> start;
    const std::shared_future<void> go = start.get_future().share();
    auto writer = [&](const std::filesystem::path& file) {
        go.wait();
        int wrong = 0;
        for (int round = 0; round < 200; ++round) {
            std::ofstream out(file, std::ios::binary | std::ios::trunc);
            detail::SharedLock lock(detail::rootMutex());
            product_->writeSettings(lock, out, "user");
            out.close();
            wrong += testsupport::readFile(file) != productText;
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
