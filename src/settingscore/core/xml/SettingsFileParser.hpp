// settings::core::SettingsFileParser: reads settings files into standalone settings trees.
//
// One parser serves one read of a file and the files it names: it owns one validating XML
// reader, one content handler (SettingsSaxHandler) and one error handler
// (SettingsSaxErrorHandler), and keeps them for all the files of that read, so the schema is
// loaded once. Typical use:
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
// settings.xsd (schemaLocation), namespaces on, full schema checking, grammar reuse across the
// parses of this parser. Files are read as the parser finds them (UTF-8 by the format).
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
// are independent. REQUIRES: no lock of the settings tree held while parsing (building the
// nodes takes the root mutex).
#pragma once

#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/xml/SettingsSaxErrorHandler.hpp>
#include <settingscore/core/xml/SettingsSaxHandler.hpp>
#include <settingscore/core/xml/detail/XmlText.hpp>

#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>

#include <xercesc/sax2/SAX2XMLReader.hpp>

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
    // Paths that the file names are kept for popAdditionalPath. Failures: see above.
    boost::shared_ptr<Settings> parse(const std::wstring& path);

    // The next file to read that a parsed file named, last named first, moved into `path`;
    // false when none is left.
    bool popAdditionalPath(std::wstring& path);

    // The external schema location the reader is given: the settings namespace, a blank, and
    // the schema's path below the installation root in UTF-8 with every white-space character
    // written as "%20" (a location list is split at white space).
    static std::string schemaLocation();

private:
    // Declared in this order so that the reader goes first: it refers to the others.
    detail::Utf16Buffer schemaLocation_;
    SettingsSaxHandler handler_;
    SettingsSaxErrorHandler errorHandler_;
    std::unique_ptr<xercesc::SAX2XMLReader> reader_;
};

}  // namespace core
}  // namespace settings
