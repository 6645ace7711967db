// The first touch of a product read from its factory file, against the floor of the XML
// parser alone on the same file, in the same run. Rows come in pairs, one per size (100,
// 1,000 and 10,000 keys):
//   Load: the product's children asked for on a fresh root, which reads, validates, builds and
//     merges its file. The fresh root (TSettings::reset, Settings::getSettingsRoot, which lists
//     the product folders) and the tear-down of the previous run's tree are made with the clock
//     stopped: they are not part of a product's first touch. / The parser with the same
//     features and the schema grammar compiled once and cached, and a handler that does
//     nothing, parsing the same file.
// BM_Load/10000 also carries the memory that the loaded product holds per key, measured once
// before any benchmark runs: the growth of the resident set (rss_bytes_per_key) and of the
// heap in use (heap_bytes_per_key).
#include <settingscore/core/Settings.hpp>
#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/storage/PreferencesDirectory.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>

#include <benchmark/benchmark.h>

#include "ProductFiles.hpp"

#include <xercesc/framework/XMLGrammarPoolImpl.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>
#include <xercesc/validators/common/Grammar.hpp>

#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

namespace sc = settings::core;
namespace xc = xercesc;
using tvutil::contextmgr::AnyInstanceID;
using tvutil::contextmgr::BlessedInstanceID;

namespace {

constexpr int sizes[] = {100, 1000, 10000};

using benchfiles::factoryDocument;
using benchfiles::productName;

std::size_t residentBytes() {
    long pages = 0;
    long resident = 0;
    if (FILE* statm = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(statm, "%ld %ld", &pages, &resident) != 2) {
            resident = 0;
        }
        std::fclose(statm);
    }
    return static_cast<std::size_t>(resident) * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

std::size_t heapBytesInUse() {
    const struct mallinfo2 info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
}

// A product node of a fresh root, not yet loaded.
boost::shared_ptr<sc::Settings> freshProduct(int keys) {
    sc::TSettings::reset(AnyInstanceID);
    return sc::Settings::getSettingsRoot(BlessedInstanceID)->getChild(productName(keys));
}

struct Files {
    std::map<int, std::string> paths;
    double rssPerKey = 0;
    double heapPerKey = 0;

    Files() {
        const std::string dir = benchfiles::makeTempRoot("loadbench");
        const std::string factory = dir + "/factory";
        const std::string user = dir + "/user";
        for (const std::string& folder : {factory, user}) {
            if (::mkdir(folder.c_str(), 0700) != 0) {
                throw std::runtime_error("cannot make " + folder);
            }
        }
        for (const int keys : sizes) {
            const std::string folder = factory + "/" + productName(keys);
            ::mkdir(folder.c_str(), 0700);
            paths[keys] = folder + "/" + productName(keys) + ".settings";
            std::ofstream(paths[keys]) << factoryDocument(keys);
        }
        ::setenv("SETTINGS_FACTORYDIR", factory.c_str(), 1);
        ::setenv("SETTINGS_USERDIR", user.c_str(), 1);
        sc::turnOffSettingsSaving();

        // The parser library, the schema and the root's own structures are in place after a
        // first small load; what the large one adds after that is the product's.
        benchmark::DoNotOptimize(freshProduct(100)->getChildren());
        const auto product = freshProduct(10000);
        const std::size_t rssBefore = residentBytes();
        const std::size_t heapBefore = heapBytesInUse();
        benchmark::DoNotOptimize(product->getChildren());
        rssPerKey = (static_cast<double>(residentBytes()) - static_cast<double>(rssBefore)) / 10000;
        heapPerKey =
            (static_cast<double>(heapBytesInUse()) - static_cast<double>(heapBefore)) / 10000;
        sc::TSettings::reset(AnyInstanceID);
    }
};

Files& files() {
    static Files* const instance = new Files();
    return *instance;
}

void BM_Load(benchmark::State& state) {
    const int keys = static_cast<int>(state.range(0));
    files();
    for (auto _ : state) {
        state.PauseTiming();
        const auto product = freshProduct(keys);
        state.ResumeTiming();
        benchmark::DoNotOptimize(product->getChildren());
    }
    if (keys == 10000) {
        state.counters["rss_bytes_per_key"] = files().rssPerKey;
        state.counters["heap_bytes_per_key"] = files().heapPerKey;
    }
}

// Ignores everything, as cheaply as a handler can.
class EmptyHandler : public xc::DefaultHandler {
public:
    void fatalError(const xc::SAXParseException& failure) override { throw failure; }
    void error(const xc::SAXParseException& failure) override { throw failure; }
};

struct FloorReader {
    std::unique_ptr<xc::XMLGrammarPool> pool;
    std::unique_ptr<xc::SAX2XMLReader> reader;
    EmptyHandler handler;
    XMLCh* location = nullptr;

    FloorReader() {
        files();  // starts the parser library too, through the first load
        // Where the library finds it: below the installation root, the build folder here.
        const std::string schema =
            std::string(sc::tolvanRoot()) + "/toolbox/tolvan/configtools/settings.xsd";
        pool.reset(new xc::XMLGrammarPoolImpl(xc::XMLPlatformUtils::fgMemoryManager));
        {
            const std::unique_ptr<xc::SAX2XMLReader> loader(xc::XMLReaderFactory::createXMLReader(
                xc::XMLPlatformUtils::fgMemoryManager, pool.get()));
            loader->setFeature(xc::XMLUni::fgSAX2CoreNameSpaces, true);
            loader->setFeature(xc::XMLUni::fgXercesSchema, true);
            loader->setFeature(xc::XMLUni::fgXercesSchemaFullChecking, true);
            loader->setErrorHandler(&handler);
            if (!loader->loadGrammar(schema.c_str(), xc::Grammar::SchemaGrammarType, true)) {
                throw std::runtime_error("no grammar in " + schema);
            }
        }
        pool->lockPool();
        reader.reset(xc::XMLReaderFactory::createXMLReader(xc::XMLPlatformUtils::fgMemoryManager,
                                                           pool.get()));
        reader->setFeature(xc::XMLUni::fgSAX2CoreNameSpaces, true);
        reader->setFeature(xc::XMLUni::fgXercesSchema, true);
        reader->setFeature(xc::XMLUni::fgXercesSchemaFullChecking, true);
        reader->setFeature(xc::XMLUni::fgSAX2CoreNameSpacePrefixes, true);
        reader->setFeature(xc::XMLUni::fgSAX2CoreValidation, true);
        reader->setFeature(xc::XMLUni::fgXercesDynamic, false);
        reader->setFeature(xc::XMLUni::fgXercesUseCachedGrammarInParse, true);
        location = xc::XMLString::transcode(("urn:lindqvare.tolvan.settings " + schema).c_str());
        reader->setProperty(xc::XMLUni::fgXercesSchemaExternalSchemaLocation, location);
        reader->setContentHandler(&handler);
        reader->setErrorHandler(&handler);
    }
};

void BM_Floor_Load(benchmark::State& state) {
    static FloorReader* const floor = new FloorReader();
    const std::string& path = files().paths.at(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        floor->reader->parse(path.c_str());
    }
}

}  // namespace

BENCHMARK(BM_Load)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Floor_Load)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
