// One change at "user" of a loaded product, which validates, stores and saves the product's
// user file, against the floor of writing the same bytes to a temporary file beside the
// target and renaming it over the target, in the same run. Rows come in pairs, one per size
// (100, 1,000 and 10,000 keys):
//   Save_Durable: setAny of one int32 key at "user", alternating two values so that every call
//     changes the value and saves, with durable saving on / the saved file's bytes written
//     with one write call, the file's data flushed (fdatasync), the rename, and the folder
//     flushed (fsync), as a durable save does.
//   Save_Fast: the same with durable saving off / the same floor without the two flushes.
//   Shared_Save_Durable, Shared_Save_Fast: the same saves, their floor the same saves without
//     the product's lock file and the check for another process's changes: what sharing the
//     file with other processes costs.
// The floor's temporary folder is made once: making a fresh one per save is a cost of the save.
#include <settingscore/core/Settings.hpp>
#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>

#include <benchmark/benchmark.h>

#include "ProductFiles.hpp"

#include <boost/any.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>

namespace sc = settings::core;
namespace fs = std::filesystem;
using tvutil::contextmgr::BlessedInstanceID;

namespace {

constexpr int sizes[] = {100, 1000, 10000};

using benchfiles::factoryDocument;
using benchfiles::productName;

void makeFolder(const std::string& folder) {
    if (::mkdir(folder.c_str(), 0700) != 0) {
        throw std::runtime_error("cannot make " + folder);
    }
}

std::string readAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// A loaded product's first group, where key k0 (int32) is changed, and what the floor needs:
// the product's user file, the bytes a save put there, a temporary file in a folder beside it.
struct Product {
    boost::shared_ptr<sc::Settings> group;
    std::string target;
    std::string folder;
    std::string bytes;
    std::string floorTemp;
    std::int32_t next = 1;

    // The next value of k0: 1 and 2 in turn, so that every call is a real change.
    std::int32_t nextValue() {
        next = 3 - next;
        return next;
    }
};

struct Files {
    std::map<int, Product> products;

    Files() {
        const std::string dir = benchfiles::makeTempRoot("savebench");
        const std::string factory = dir + "/factory";
        const std::string user = dir + "/user";
        makeFolder(factory);
        makeFolder(user);
        for (const int keys : sizes) {
            makeFolder(factory + "/" + productName(keys));
            std::ofstream(factory + "/" + productName(keys) + "/" + productName(keys) + ".settings")
                << factoryDocument(keys);
        }
        ::setenv("SETTINGS_FACTORYDIR", factory.c_str(), 1);
        ::setenv("SETTINGS_USERDIR", user.c_str(), 1);
        sc::turnOnSettingsSaving();

        const auto root = sc::Settings::getSettingsRoot(BlessedInstanceID);
        for (const int keys : sizes) {
            Product& product = products[keys];
            product.group = root->getChild(productName(keys))->getChild("g0");
            product.group->setAny("k0", product.nextValue(), "user");
            const std::string fileName = productName(keys) + ".settings";
            for (const auto& entry : fs::recursive_directory_iterator(user)) {
                if (entry.path().filename() == fileName) {
                    product.target = entry.path().string();
                }
            }
            if (product.target.empty()) {
                throw std::runtime_error("the save wrote no " + fileName);
            }
            product.folder = fs::path(product.target).parent_path().string();
            product.bytes = readAll(product.target);
            const std::string floorFolder = product.folder + "/floortemp" + productName(keys);
            makeFolder(floorFolder);
            product.floorTemp = floorFolder + "/" + fileName + ".tmp";
        }
    }
};

Files& files() {
    static Files* const instance = new Files();
    return *instance;
}

void save(benchmark::State& state) {
    Product& product = files().products.at(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        product.group->setAny("k0", product.nextValue(), "user");
    }
    state.counters["file_bytes"] = static_cast<double>(product.bytes.size());
}

void BM_Save_Durable(benchmark::State& state) {
    sc::turnOnDurableSaving();
    save(state);
}

void BM_Save_Fast(benchmark::State& state) {
    sc::turnOffDurableSaving();
    save(state);
    sc::turnOnDurableSaving();
}

void BM_Shared_Save_Durable(benchmark::State& state) {
    BM_Save_Durable(state);
}

void BM_Shared_Save_Fast(benchmark::State& state) {
    BM_Save_Fast(state);
}

void BM_Floor_Shared_Save_Durable(benchmark::State& state) {
    sc::detail::setSharedFileSaving(false);
    BM_Save_Durable(state);
    sc::detail::setSharedFileSaving(true);
}

void BM_Floor_Shared_Save_Fast(benchmark::State& state) {
    sc::detail::setSharedFileSaving(false);
    BM_Save_Fast(state);
    sc::detail::setSharedFileSaving(true);
}

// The bytes to the temporary file in one write, then the replace; with `durable`, the
// flushes of the file's data and of the folder.
void writeAndReplace(const Product& product, bool durable) {
    const int fd = ::open(product.floorTemp.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (fd < 0) {
        throw std::runtime_error("cannot open " + product.floorTemp);
    }
    const ssize_t written = ::write(fd, product.bytes.data(), product.bytes.size());
    if (written != static_cast<ssize_t>(product.bytes.size()) || (durable && ::fdatasync(fd)) ||
        ::close(fd) != 0) {
        throw std::runtime_error("cannot write " + product.floorTemp);
    }
    if (std::rename(product.floorTemp.c_str(), product.target.c_str()) != 0) {
        throw std::runtime_error("cannot rename over " + product.target);
    }
    if (durable) {
        const int folder = ::open(product.folder.c_str(), O_RDONLY | O_DIRECTORY);
        if (folder < 0 || ::fsync(folder) != 0 || ::close(folder) != 0) {
            throw std::runtime_error("cannot flush " + product.folder);
        }
    }
}

void floor(benchmark::State& state, bool durable) {
    const Product& product = files().products.at(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        writeAndReplace(product, durable);
    }
    state.counters["file_bytes"] = static_cast<double>(product.bytes.size());
}

void BM_Floor_Save_Durable(benchmark::State& state) {
    floor(state, true);
}

void BM_Floor_Save_Fast(benchmark::State& state) {
    floor(state, false);
}

}  // namespace

BENCHMARK(BM_Save_Durable)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Floor_Save_Durable)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Save_Fast)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Floor_Save_Fast)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
// Interleaved, with and without, so that the disk's mood falls on both alike.
BENCHMARK(BM_Shared_Save_Durable)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Floor_Shared_Save_Durable)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Shared_Save_Fast)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Floor_Shared_Save_Fast)->Arg(1000)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
