// The constants of the settings file format, as members of Settings.
#include <settingscore/core/Settings.hpp>

namespace settings {
namespace core {

const std::string Settings::settingsExtension = ".settings";

const std::string Settings::settingsXMLFileHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

const std::string Settings::settingsXMLNameSpace = "urn:lindqvare.tolvan.settings";

// The attributes of a document element: the default namespace, where its schema lies, and the
// schema-instance namespace that the location attribute needs. One blank between them.
const std::string Settings::settingsSchemaInfo =
    "xmlns=\"urn:lindqvare.tolvan.settings\" "
    "xsi:schemaLocation=\"urn:lindqvare.tolvan.settings settings.xsd\" "
    "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";

}  // namespace core
}  // namespace settings
