#include <settingscore/core/xml/detail/SchemaGrammarCache.hpp>

#include <settingscore/core/xml/SettingsSaxErrorHandler.hpp>
#include <settingscore/core/xml/detail/XmlText.hpp>

#include <platform/hf/i18n/detail/XercesRuntime.hpp>

#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/framework/XMLGrammarPoolImpl.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>
#include <xercesc/validators/common/Grammar.hpp>
#include <xercesc/validators/schema/ComplexTypeInfo.hpp>
#include <xercesc/validators/schema/SchemaElementDecl.hpp>
#include <xercesc/validators/schema/SchemaGrammar.hpp>

#include <sys/stat.h>

#include <cstdint>
#include <map>
#include <mutex>

namespace settings {
namespace core {
namespace detail {

namespace {

namespace xc = xercesc;

// What tells one version of a file from another without reading it.
struct FileIdentity {
    std::uintmax_t device = 0;
    std::uintmax_t inode = 0;
    std::intmax_t size = 0;
    std::intmax_t modifiedSeconds = 0;
    long modifiedNanoseconds = 0;

    bool operator==(const FileIdentity& other) const {
        return device == other.device && inode == other.inode && size == other.size &&
               modifiedSeconds == other.modifiedSeconds &&
               modifiedNanoseconds == other.modifiedNanoseconds;
    }
};

bool identify(const std::string& path, FileIdentity& identity) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    identity.device = status.st_dev;
    identity.inode = status.st_ino;
    identity.size = status.st_size;
    identity.modifiedSeconds = status.st_mtim.tv_sec;
    identity.modifiedNanoseconds = status.st_mtim.tv_nsec;
    return true;
}

// Builds what the parser library would otherwise build on first use, inside a parse, into the
// grammar itself: the content models of complex types (with their formatted text, used in
// messages) and their attribute lists. Once the grammar is shared, two parsers doing that at
// once would race: one's model would be lost, or worse.
void buildLazyParts(xc::ComplexTypeInfo& type) {
    type.getContentModel();
    type.getFormattedContentModel();
    type.getAttDefList();
}

void buildLazyParts(xc::SchemaGrammar& grammar) {
    if (xc::RefHashTableOf<xc::ComplexTypeInfo>* const types = grammar.getComplexTypeRegistry()) {
        xc::RefHashTableOfEnumerator<xc::ComplexTypeInfo> type(
            types, false, xc::XMLPlatformUtils::fgMemoryManager);
        while (type.hasMoreElements()) {
            buildLazyParts(type.nextElement());
        }
    }
    // Element declarations with anonymous types, local ones included.
    auto element = grammar.getElemEnumerator();
    while (element.hasMoreElements()) {
        if (xc::ComplexTypeInfo* const type = element.nextElement().getComplexTypeInfo()) {
            buildLazyParts(*type);
        }
    }
}

// Compiles the schema into a new pool and locks it; null on any failure. The loading reader
// has the schema features of the settings readers, so the grammar is the one they would
// build themselves.
std::shared_ptr<xc::XMLGrammarPool> compileSchema(const std::string& path) {
    try {
        std::shared_ptr<xc::XMLGrammarPool> pool(
            new xc::XMLGrammarPoolImpl(xc::XMLPlatformUtils::fgMemoryManager));
        // The grammar is allocated by the loader and adopted by the pool: both use the
        // process-wide manager, which outlives them.
        const std::unique_ptr<xc::SAX2XMLReader> loader(xc::XMLReaderFactory::createXMLReader(
            xc::XMLPlatformUtils::fgMemoryManager, pool.get()));
        loader->setFeature(xc::XMLUni::fgSAX2CoreNameSpaces, true);
        loader->setFeature(xc::XMLUni::fgXercesSchema, true);
        loader->setFeature(xc::XMLUni::fgXercesSchemaFullChecking, true);
        SettingsSaxErrorHandler errors;  // any error of the schema fails the load
        loader->setErrorHandler(&errors);
        const Utf16Buffer file = toUtf16Buffer(path);
        xc::LocalFileInputSource source(file.get());
        xc::Grammar* const grammar =
            loader->loadGrammar(source, xc::Grammar::SchemaGrammarType, true);
        if (!grammar || grammar->getGrammarType() != xc::Grammar::SchemaGrammarType) {
            return nullptr;
        }
        buildLazyParts(*static_cast<xc::SchemaGrammar*>(grammar));
        // Locked, the pool is read-only and safe for readers on several threads; readers
        // must be created after this, since they take the pool's shared name table then.
        pool->lockPool();
        return pool;
    } catch (...) {
        // The parser library's exceptions are no std::exception; whatever went wrong, the
        // readers go without a pool and meet the same trouble themselves.
        return nullptr;
    }
}

class GrammarCache {
public:
    std::shared_ptr<xc::XMLGrammarPool> find(const std::string& path) {
        FileIdentity identity;
        const bool exists = identify(path, identity);
        const std::lock_guard<std::mutex> guard(mutex_);
        ++clock_;
        auto entry = entries_.find(path);
        if (!exists) {
            if (entry != entries_.end()) {
                entries_.erase(entry);
            }
            return nullptr;
        }
        if (entry != entries_.end() && entry->second.identity == identity) {
            entry->second.lastUse = clock_;
            return entry->second.pool;
        }
        // Compiled under the lock: the first parsers of a new schema wait for it rather than
        // all compiling it at once.
        auto pool = compileSchema(path);
        if (!pool) {
            if (entry != entries_.end()) {
                entries_.erase(entry);
            }
            return nullptr;
        }
        if (entry == entries_.end()) {
            forgetLeastRecentlyUsedIfFull();
            entry = entries_.emplace(path, Entry()).first;
        }
        entry->second = Entry{identity, pool, clock_};
        return pool;
    }

private:
    struct Entry {
        FileIdentity identity;
        std::shared_ptr<xc::XMLGrammarPool> pool;
        std::uint64_t lastUse = 0;
    };

    // Schemas at more paths than this are seldom in use at once outside tests.
    static constexpr std::size_t capacity = 8;

    void forgetLeastRecentlyUsedIfFull() {
        if (entries_.size() < capacity) {
            return;
        }
        auto oldest = entries_.begin();
        for (auto it = entries_.begin(); it != entries_.end(); ++it) {
            if (it->second.lastUse < oldest->second.lastUse) {
                oldest = it;
            }
        }
        entries_.erase(oldest);
    }

    std::mutex mutex_;
    std::uint64_t clock_ = 0;
    std::map<std::string, Entry> entries_;
};

}  // namespace

std::shared_ptr<xc::XMLGrammarPool> sharedSchemaGrammar(const std::string& schemaPath) {
    if (!hf::i18n::detail::ensureXercesInitialized()) {
        return nullptr;
    }
    // Never destroyed: readers may be parsing on other threads while the process exits, and
    // the parser library itself is never terminated.
    static GrammarCache* const cache = new GrammarCache();
    return cache->find(schemaPath);
}

}  // namespace detail
}  // namespace core
}  // namespace settings
