// settings::core::SettingsFileParser: reads settings files into standalone settings trees.
//
// One parser serves one read of a file and the files it names: it owns one validating XML
// reader, one content handler (SettingsSaxHandler) and one error handler
// (SettingsSaxErrorHandler), and keeps them for all the files of that read. Typical use:
//
//     SettingsFileParser parser;                 // may throw ErrorReadingSettingsData 0 or 1
//     std::wstring file = firstFile;
//     do {
//         boost::shared_ptr<Settings> tree = parser.parse(file);   // codes 4 and 5
//         ... merge tree ...
//     } while (parser.popAdditionalPath(file));
//
// The reader validates every file against the settings schema, whether or not the file
// names one: the schema is always taken from <tolvanRootUStr()>/toolbox/tolvan/configtools/
// settings.xsd (schemaLocation), namespaces on, full schema checking. The schema is compiled
// once per process (per schema file, see detail::sharedSchemaGrammar) and every reader takes
// it from that shared, locked grammar pool; when the file cannot be compiled the reader gets
// no pool and loads the schema itself, so a missing or broken schema fails each parse just as
// it would without the pool. Files are read as the parser finds them (UTF-8 by the format).
//
// Hostile files fail fast and small, whatever they hold:
// - a document type declaration with an internal or external subset is refused as soon as
//   its name and identifiers are read (code 5, "Settings files have no document type
//   declaration"), so no entity is ever declared, expanded or fetched; the parser's entity
//   expansion limit is set low besides. A bare "<!DOCTYPE settings>", which can declare
//   nothing and names nothing to read, is not even reported by the parser and passes;
// - an element nested deeper than SettingsSaxHandler::maxDepth levels, and an element text
//   longer than SettingsSaxHandler::maxTextLength characters, are refused (code 5);
// - the reader may hold at most readerMemoryLimit bytes at once (detail::ParserMemoryBudget):
//   a huge attribute, a start tag with a huge number of attributes, a huge comment or name
//   fails with code 5 ("...needs more than 16 MiB of parser memory...") once that much is
//   taken. The reader is then replaced before the next parse.
//
// Each parse builds a new standalone tree: a product node (the document element), its groups
// and keys, every value at level "user". Failures:
// - not well formed, schema violation, unreadable file: ErrorReadingSettingsData code 4 with
//   the text "LineNum=<line>  ColNum=<line><column>  <parser message>". The column field
//   deliberately shows the line's digits followed by the column's (line 12, column 34 gives
//   "ColNum=1234"): that run-together form is part of the interface, do not tidy it;
// - a message failure of the element objects (wrong value text, illegal child tag, text where
//   none belongs, wrong number of values, min above max, key without type) or of the handler
//   itself (a document element other than "settings"): code 5 with the message's text;
// - anything else that the element objects raise passes through unchanged: the numeric
//   overflow of an out-of-range "int8" or "uint8" value, boost::bad_lexical_cast from an
//   empty array size or a bad "version", and the tree's own failures such as
//   ErrorAddingChildNodeOrKey for two siblings of the same name. Each failure abandons the
//   whole file.
//
// Not thread-safe: one parser belongs to the thread that reads. Parsers of different threads
// share nothing but the locked grammar pool, which is read-only. REQUIRES: no lock of the
// settings tree held while parsing (building the nodes takes the root mutex).
#pragma once

#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/xml/SettingsSaxErrorHandler.hpp>
#include <settingscore/core/xml/SettingsSaxHandler.hpp>
#include <settingscore/core/xml/detail/ParserMemoryBudget.hpp>
#include <settingscore/core/xml/detail/XmlText.hpp>

#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>

#include <xercesc/framework/XMLGrammarPool.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace settings {
namespace core {

class SettingsFileParser : private boost::noncopyable {
public:
    // Starts the parser library if need be and creates and sets up the reader.
    // Throws ErrorReadingSettingsData code 1 ("Failed to find SAX plug in.") when the parser
    // library cannot be started, code 0 ("Failed to create XMLReader.") when no reader can be
    // created.
    SettingsFileParser();
    ~SettingsFileParser();

    // Parses the file at `path` and returns its tree, null only if the document produced none.
    // The file is read whole through the file system in force (hf::filesystem::FileSystem),
    // which refuses anything but a regular file and one larger than maxFileSize; a file that
    // cannot be read is code 4 at line 0 with the file system's text. Paths that the file names are
    // kept for popAdditionalPath. Failures: see above; code 0 also if the reader spent by the
    // previous parse cannot be replaced.
    boost::shared_ptr<Settings> parse(const std::wstring& path);
    // The same for the bytes `content`, read from `path` already.
    boost::shared_ptr<Settings> parse(const std::wstring& path, const std::string& content);

    // The next file to read that a parsed file named, last named first, moved into `path`;
    // false when none is left.
    bool popAdditionalPath(std::wstring& path);

    // The external schema location the reader is given: the settings namespace, a blank, and
    // the schema's path below the installation root in UTF-8 with every white-space character
    // written as "%20" (a location list is split at white space).
    static std::string schemaLocation();

    // The largest settings file read: a file is read whole before it is parsed, and the
    // writer never makes a larger one.
    static constexpr std::uint64_t maxFileSize = 16u << 20;

    // The most memory one reader may hold at once, overhead included. A well-formed file of
    // 10,000 keys needs a few hundred KiB; a single text of a million characters about 6 MiB.
    static constexpr std::size_t readerMemoryLimit = 16u << 20;

private:
    // Creates and sets up reader_ (and its memory budget); throws code 0 when it cannot.
    void createReader();

    // Declared in this order so that the reader goes first: it refers to the others.
    detail::Utf16Buffer schemaLocation_;
    SettingsSaxHandler handler_;
    SettingsSaxErrorHandler errorHandler_;
    xercesc::SecurityManager securityManager_;
    std::shared_ptr<xercesc::XMLGrammarPool> grammarPool_;
    std::unique_ptr<detail::ParserMemoryBudget> memory_;
    std::unique_ptr<xercesc::SAX2XMLReader> reader_;
};

}  // namespace core
}  // namespace settings
