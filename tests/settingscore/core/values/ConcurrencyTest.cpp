// Writers, readers, a validator and a listener that read the tree, all at once: the sanitizer
// build checks the guarding, and the test finishing at all checks that a callout reading the
// tree under a writer's hold does not wait for itself.
#include "ValuesFixture.hpp"

#include <thread>

namespace valuestest {
namespace {

TEST_F(ValuesTest, CalloutsAndListenersReadTheTreeWhileWritersAndReadersRun) {
    auto group = mountUnderProduct(makeKey("k0"));
    for (int k = 1; k < 4; ++k) {
        makeKey("k" + std::to_string(k))->setParent(group);
    }
    std::atomic<long> validatorReads{0};
    std::atomic<long> listenerReads{0};
    // The validator reads a sibling through the public interface, under the writer's hold.
    JValidator::setJValProxy([&](const std::string&, const std::string&,
                                 const boost::shared_ptr<const settings::core::Settings>& parent,
                                 const std::string&, const boost::any&) {
        if (parent && parent->getChild("k0")) {
            ++validatorReads;
        }
    });
    group->setValidator(JValidator("pkg", "readsTheTree"));
    auto connection = root()->addListener([&](const settings::core::SettingsEvent& event) {
        if (event.getObj()->getParent()) {
            ++listenerReads;
        }
    });
    ASSERT_TRUE(connection);

    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int writer = 0; writer < 2; ++writer) {
        threads.emplace_back([&, writer] {
            for (int i = 0; i < 300; ++i) {
                const std::string key = "k" + std::to_string((i + writer) % 4);
                group->setAny(key, i, writer == 0 ? "session" : "user");
                if (i % 50 == 0) {
                    group->setValidator(JValidator("pkg", "readsTheTree"));
                }
            }
        });
    }
    for (int reader = 0; reader < 2; ++reader) {
        threads.emplace_back([&] {
            while (!stop.load()) {
                for (int k = 0; k < 4; ++k) {
                    group->getAny("k" + std::to_string(k), "");
                }
                root()->getNodeByPath("p.g.k1");
            }
        });
    }
    threads[0].join();
    threads[1].join();
    stop = true;
    threads[2].join();
    threads[3].join();
    EXPECT_EQ(600, validatorReads.load());
    EXPECT_GT(listenerReads.load(), 0);
    for (int k = 0; k < 4; ++k) {
        EXPECT_FALSE(group->getAny("k" + std::to_string(k), "").empty());
    }
}

}  // namespace
}  // namespace valuestest
