// Readers and writers of one tree on several threads at once: run under the sanitizers, this
// catches unguarded fields, lock-order faults and use of detached nodes.
#include "TreeFixture.hpp"

#include <settingscore/core/exception/Exceptions.hpp>

#include <thread>

namespace treetest {
namespace {

TEST_F(TreeTest, ReadersAndStructuralWritersShareOneTree) {
    shipProduct("prod");
    auto r = root();
    auto product = r->getChild("prod");
    for (int g = 0; g < 4; ++g) {
        auto group = makeNode("g" + std::to_string(g), false);
        for (int k = 0; k < 4; ++k) {
            makeNode("k" + std::to_string(k), true)->setParent(group);
        }
        group->setParent(product);
    }

    std::atomic<bool> stop{false};
    std::atomic<long> found{0};
    std::vector<std::thread> threads;
    for (int reader = 0; reader < 3; ++reader) {
        threads.emplace_back([&] {
            while (!stop.load()) {
                for (int g = 0; g < 6; ++g) {
                    const std::string path = "prod.g" + std::to_string(g) + ".k1";
                    if (auto key = r->getNodeByPath(path)) {
                        // Groups 4 and 5 come and go: their names may change under the reader.
                        const bool stable = g < 4;
                        found += !stable || key->getFullName() == path ? 1 : 1000000;
                        key->isReadOnly();
                        key->getInstanceId();
                    }
                }
                for (const auto& child : product->getChildren()) {
                    child->getChildren();
                    child->getParent();
                }
            }
        });
    }
    // Writers attach and remove their own groups and keys under the shared product.
    for (int writer = 0; writer < 2; ++writer) {
        threads.emplace_back([&, writer] {
            const std::string name = "g" + std::to_string(4 + writer);
            auto productT = boost::dynamic_pointer_cast<TSettings>(product);
            for (int round = 0; round < 200; ++round) {
                auto group = makeNode(name, false);
                makeNode("k1", true)->setParent(group);
                makeNode("k2", true)->setParent(group);
                group->setParent(product);
                group->removeKey("k2");
                productT->removeNode(name);
                EXPECT_FALSE(group->isOnTree());
            }
        });
    }
    for (std::size_t i = 3; i < threads.size(); ++i) {
        threads[i].join();
    }
    stop = true;
    for (std::size_t i = 0; i < 3; ++i) {
        threads[i].join();
    }
    EXPECT_GT(found.load(), 0);
    EXPECT_LT(found.load(), 1000000) << "a reader saw a key under a wrong name";
}

}  // namespace
}  // namespace treetest
