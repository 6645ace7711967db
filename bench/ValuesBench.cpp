// Reading and writing values against their floors, in the same run. Rows come in pairs:
// BM_X is the operation, BM_Floor_X its floor.
//   GetAny: the effective value of a scalar key / a shared_lock, a std::map<std::string,
//     boost::any> lookup and a copy of the value.
//   SetAnySessionWithListener: a write at "session" to a key with a listener on the root /
//     the floor of GetAny plus an exclusive map update.
//   ValidatedWrite: a write checked against range and choices / the same floor.
#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/events/SettingsEvent.hpp>

#include <benchmark/benchmark.h>

#include <boost/thread/locks.hpp>
#include <boost/thread/shared_mutex.hpp>

#include <cstdlib>
#include <map>
#include <string>

namespace sc = settings::core;

namespace {

// A key with limits, which only settings files declare otherwise.
class LimitedKey : public sc::SettingsImpl {
public:
    LimitedKey()
        : SettingsImpl("limited", true, boost::optional<bool>(true), sc::ValidatorVariant(),
                       Writable, boost::shared_ptr<SettingsImpl>()) {
        metaData_ = sc::SettingsKeyMetaData<boost::any>(
            0, 1000, std::vector<boost::any>{boost::any(2000), boost::any(3000)});
    }
};

struct Fixture {
    boost::shared_ptr<sc::Settings> group;
    std::unique_ptr<hostsvc::msg_svc::eventmgr::Connection> connection;
    std::map<std::string, boost::any> floorMap;
    boost::shared_mutex floorMutex;
    long heard = 0;

    Fixture() {
        char pattern[] = "/tmp/settingscore-bench-XXXXXX";
        const std::string dir = ::mkdtemp(pattern);
        ::setenv("SETTINGS_FACTORYDIR", dir.c_str(), 1);
        ::setenv("SETTINGS_USERDIR", dir.c_str(), 1);
        auto root = sc::Settings::getSettingsRoot(tvutil::contextmgr::BlessedInstanceID);
        auto product = sc::TSettings::createSettingsNode("product", false, true,
                                                         sc::ValidatorVariant(), false);
        auto node =
            sc::TSettings::createSettingsNode("group", false, true, sc::ValidatorVariant(), false);
        for (int k = 0; k < 20; ++k) {
            const std::string name = "key" + std::to_string(k);
            sc::TSettings::createSettingsNode(name, true, true, sc::ValidatorVariant(), false)
                ->setParent(node);
            floorMap[name] = boost::any(k);
        }
        node->setParent(product);
        product->setParent(root);
        group = root->getNodeByPath("product.group");
        for (int k = 0; k < 20; ++k) {
            group->setAny("key" + std::to_string(k), k, "session");
        }
        connection = root->addListener([this](const sc::SettingsEvent&) { ++heard; });
    }
};

Fixture& fixture() {
    static Fixture* const instance = new Fixture();
    return *instance;
}

void BM_GetAny(benchmark::State& state) {
    auto& f = fixture();
    const std::string name = "key13";
    const std::string effective;
    for (auto _ : state) {
        boost::any value = f.group->getAny(name, effective);
        benchmark::DoNotOptimize(value);
    }
}

void BM_Floor_GetAny(benchmark::State& state) {
    auto& f = fixture();
    const std::string name = "key13";
    for (auto _ : state) {
        boost::shared_lock<boost::shared_mutex> lock(f.floorMutex);
        boost::any value = f.floorMap.find(name)->second;
        benchmark::DoNotOptimize(value);
    }
}

void BM_SetAnySessionWithListener(benchmark::State& state) {
    auto& f = fixture();
    const std::string name = "key5";
    const std::string session = "session";
    int i = 0;
    for (auto _ : state) {
        f.group->setAny(name, ++i, session);
    }
}

void BM_Floor_SetAnySessionWithListener(benchmark::State& state) {
    auto& f = fixture();
    const std::string name = "key5";
    int i = 0;
    for (auto _ : state) {
        boost::upgrade_lock<boost::shared_mutex> lock(f.floorMutex);
        const boost::any old = f.floorMap.find(name)->second;
        benchmark::DoNotOptimize(old);
        boost::upgrade_to_unique_lock<boost::shared_mutex> exclusive(lock);
        f.floorMap[name] = boost::any(++i);
    }
}

void BM_ValidatedWrite(benchmark::State& state) {
    // A key whose limits are min 0, max 1000 and choices 2000, 3000: each write checks its
    // type, size, range and choices.
    static const bool limited = [] {
        auto& f = fixture();
        boost::make_shared<LimitedKey>()->setParent(f.group);
        return true;
    }();
    (void)limited;
    auto& f = fixture();
    const std::string name = "limited";
    const std::string session = "session";
    int i = 0;
    for (auto _ : state) {
        f.group->setAny(name, (++i) % 1000, session);
    }
}

void BM_Floor_ValidatedWrite(benchmark::State& state) {
    BM_Floor_SetAnySessionWithListener(state);
}

}  // namespace

BENCHMARK(BM_GetAny);
BENCHMARK(BM_Floor_GetAny);
BENCHMARK(BM_GetAny)->Name("BM_GetAny2Threads")->Threads(2);
BENCHMARK(BM_Floor_GetAny)->Name("BM_Floor_GetAny2Threads")->Threads(2);
BENCHMARK(BM_SetAnySessionWithListener);
BENCHMARK(BM_Floor_SetAnySessionWithListener);
BENCHMARK(BM_ValidatedWrite);
BENCHMARK(BM_Floor_ValidatedWrite);

BENCHMARK_MAIN();
