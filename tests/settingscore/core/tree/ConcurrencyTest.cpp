// Readers and structural writers of one tree on several threads: under the sanitizers this
// catches unguarded fields, lock-order faults and use of detached nodes.
#include "TreeFixture.hpp"

#include "platform/hf/Threads.hpp"

namespace treetest {
namespace {

TEST_F(TreeTest, ReadersAndStructuralWritersShareOneTree) {
    shipProduct("prod");
    auto r = root();
    auto product = r->getChild("prod");
    for (int g = 0; g < 4; ++g) {
        makeNode("k1", true, makeNode("g" + std::to_string(g), false, product));
    }
    std::atomic<bool> stop{false};
    std::atomic<int> writersDone{0};
    std::atomic<long> found{0}, misnamed{0};
    // Threads 0 and 1 attach and remove their own group, "g4" or "g5", each change saved and
    // the product loaded by the real loader; the others read.
    hftest::onThreads(5, [&](int i) {
        for (int round = 0; i < 2 && round < 50; ++round) {
            auto group = makeNode("g" + std::to_string(4 + i), false);
            makeNode("k1", true, group);
            makeNode("k2", true, group);
            group->setParent(product);
            group->removeKey("k2");
            boost::dynamic_pointer_cast<TSettings>(product)->removeNode(group->getName());
            EXPECT_FALSE(group->isOnTree());
        }
        if (i < 2 && ++writersDone == 2) {
            stop = true;
        }
        while (!stop.load()) {
            for (int g = 0; g < 6; ++g) {
                const std::string path = "prod.g" + std::to_string(g) + ".k1";
                if (auto key = r->getNodeByPath(path)) {
                    ++found;
                    misnamed += g < 4 && key->getFullName() != path;
                }
            }
            for (const auto& child : product->getChildren()) {
                child->getChildren();
                child->getParent();
            }
        }
    });
    EXPECT_GT(found.load(), 0);
    EXPECT_EQ(0, misnamed.load()) << "a reader saw a key under a wrong name";
    EXPECT_EQ(5u, product->getChildren().size());  // g0..g3 and the file's "x"
}

}  // namespace
}  // namespace treetest
