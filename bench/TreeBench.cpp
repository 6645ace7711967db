// Finding nodes in a loaded tree against the floor of the same lookups in a std::map under a
// boost::shared_lock. Rows come in pairs: BM_X is the operation, BM_Floor_X its floor.
#include <settingscore/core/TSettings.hpp>

#include <benchmark/benchmark.h>

#include <boost/thread/locks.hpp>
#include <boost/thread/shared_mutex.hpp>

#include <cstdlib>
#include <map>
#include <memory>
#include <string>

namespace sc = settings::core;

namespace {

struct FloorNode {
    std::map<std::string, std::shared_ptr<FloorNode>> children;
};

// A product of 10 groups with 20 keys each, attached under the root, and the same shape in
// plain maps.
struct Trees {
    boost::shared_ptr<sc::Settings> root;
    boost::shared_ptr<sc::Settings> group;
    FloorNode floorRoot;
    boost::shared_mutex floorMutex;

    Trees() {
        // The root must find empty level folders, never the user's own.
        char pattern[] = "/tmp/settingscore-bench-XXXXXX";
        const std::string dir = ::mkdtemp(pattern);
        ::setenv("SETTINGS_FACTORYDIR", dir.c_str(), 1);
        ::setenv("SETTINGS_USERDIR", dir.c_str(), 1);
        root = sc::Settings::getSettingsRoot(tvutil::contextmgr::BlessedInstanceID);
        auto product = sc::TSettings::createSettingsNode("product", false, true,
                                                         sc::ValidatorVariant(), false);
        auto& floorProduct = floorRoot.children["product"];
        floorProduct = std::make_shared<FloorNode>();
        for (int g = 0; g < 10; ++g) {
            const std::string groupName = "group" + std::to_string(g);
            auto node = sc::TSettings::createSettingsNode(groupName, false, true,
                                                          sc::ValidatorVariant(), false);
            auto& floorGroup = floorProduct->children[groupName];
            floorGroup = std::make_shared<FloorNode>();
            for (int k = 0; k < 20; ++k) {
                const std::string keyName = "key" + std::to_string(k);
                sc::TSettings::createSettingsNode(keyName, true, true, sc::ValidatorVariant(),
                                                  false)
                    ->setParent(node);
                floorGroup->children[keyName] = std::make_shared<FloorNode>();
            }
            node->setParent(product);
        }
        product->setParent(root);
        group = root->getNodeByPath("product.group7");
    }
};

Trees& trees() {
    static Trees* const instance = new Trees();
    return *instance;
}

void BM_GetChild(benchmark::State& state) {
    const auto& group = trees().group;
    const std::string name = "key13";
    for (auto _ : state) {
        auto child = group->getChild(name);
        benchmark::DoNotOptimize(child);
    }
}

void BM_Floor_GetChild(benchmark::State& state) {
    auto& t = trees();
    const auto& group = *t.floorRoot.children["product"]->children["group7"];
    const std::string name = "key13";
    for (auto _ : state) {
        boost::shared_lock<boost::shared_mutex> lock(t.floorMutex);
        auto found = group.children.find(name);
        auto child = found == group.children.end() ? nullptr : found->second;
        benchmark::DoNotOptimize(child);
    }
}

void BM_GetNodeByPath3(benchmark::State& state) {
    const auto& root = trees().root;
    const std::string path = "product.group7.key13";
    for (auto _ : state) {
        auto node = root->getNodeByPath(path);
        benchmark::DoNotOptimize(node);
    }
}

// Three lookups under one shared lock.
void BM_Floor_GetNodeByPath3(benchmark::State& state) {
    auto& t = trees();
    const std::string parts[] = {"product", "group7", "key13"};
    for (auto _ : state) {
        boost::shared_lock<boost::shared_mutex> lock(t.floorMutex);
        const FloorNode* node = &t.floorRoot;
        std::shared_ptr<FloorNode> held;
        for (const auto& part : parts) {
            auto found = node->children.find(part);
            if (found == node->children.end()) {
                held = nullptr;
                break;
            }
            held = found->second;
            node = held.get();
        }
        benchmark::DoNotOptimize(held);
    }
}

}  // namespace

BENCHMARK(BM_GetChild);
BENCHMARK(BM_Floor_GetChild);
BENCHMARK(BM_GetNodeByPath3);
BENCHMARK(BM_Floor_GetNodeByPath3);

BENCHMARK_MAIN();
