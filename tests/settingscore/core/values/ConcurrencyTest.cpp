// Writers, readers, and a validator and a listener that read the tree, all at once: the
// sanitizer build checks the guarding, and the test finishing at all checks that a callout
// reading the tree under a writer's hold does not wait for itself.
#include "ValuesFixture.hpp"

#include "platform/hf/Threads.hpp"

namespace valuestest {
namespace {

TEST_F(ValuesTest, CalloutsAndListenersReadTheTreeWhileWritersAndReadersRun) {
    auto group = mountUnderProduct({makeKey("k0"), makeKey("k1"), makeKey("k2"), makeKey("k3")});
    std::atomic<long> validatorReads{0}, listenerReads{0};
    JValidator::setJValProxy(
        [&](const std::string&, const std::string&, const boost::shared_ptr<const Settings>& parent,
            const std::string&,
            const boost::any&) { validatorReads += parent && parent->getChild("k0"); });
    group->setValidator(JValidator("pkg", "readsTheTree"));
    auto connection = root()->addListener([&](const settings::core::SettingsEvent& event) {
        listenerReads += bool(event.getObj()->getParent());
    });

    std::atomic<bool> stop{false};
    std::atomic<int> writersDone{0};
    // Threads 0 and 1 write (renewing the validator now and then), then read with 2 and 3.
    hftest::onThreads(4, [&](int i) {
        for (int round = 0; i < 2 && round < 300; ++round) {
            group->setAny("k" + std::to_string((round + i) % 4), round, i ? "user" : "session");
            if (round % 50 == 0) {
                group->setValidator(JValidator("pkg", "readsTheTree"));
            }
        }
        if (i < 2 && ++writersDone == 2) {
            stop = true;
        }
        while (!stop.load()) {
            for (int k = 0; k < 4; ++k) {
                group->getAny("k" + std::to_string(k), "");
            }
            root()->getNodeByPath("p.g.k1");
        }
    });
    EXPECT_EQ(600, validatorReads.load());
    EXPECT_GT(listenerReads.load(), 0);
}

}  // namespace
}  // namespace valuestest
