#include "Failure.hpp"

#include "ValueText.hpp"

#include <settingscore/settingscore.hpp>

#include <boost/core/demangle.hpp>
#include <boost/lexical_cast.hpp>
#include <boost/numeric/conversion/cast.hpp>

#include <map>
#include <regex>
#include <typeinfo>

namespace tvsettings {

namespace {

namespace sc = settings::core;
namespace ex = settings::core::exception;
using hf::i18n::to_string;

// Fixed texts and callout messages come with trailing blanks and line ends.
std::string trimmed(const std::string& text) {
    const std::string::size_type end = text.find_last_not_of(" \t\r\n");
    const std::string::size_type begin = text.find_first_not_of(" \t\r\n");
    return end == std::string::npos ? std::string() : text.substr(begin, end - begin + 1);
}

std::string nodeName(const sc::ConstSettingsPtr& node) {
    if (!node) {
        return "(none)";
    }
    return node->isRoot() ? "root" : node->getFullName();
}

// The class's own name, without its namespaces: "settings::core::exception::NoSuchKey" is
// "NoSuchKey".
std::string shortClassName(const std::type_info& type) {
    const std::string full = boost::core::demangle(type.name());
    const std::string::size_type templateStart = full.find('<');
    const std::string::size_type lastScope = full.rfind("::", templateStart);
    return lastScope == std::string::npos ? full : full.substr(lastScope + 2);
}

// The message-id failures by catalogue key: which family each belongs to.
ExitCode messageExitCode(const std::string& key) {
    static const std::map<std::string, ExitCode> codes = {
        {"DataTypeNotMatch", ExitCode::Refused},
        {"TypeNotSpecifiedForNoneAnyType", ExitCode::Refused},
        {"XMLMetaDataParserError", ExitCode::Refused},
        {"XMLParseErrorWrongValueForGivenType", ExitCode::Refused},
        {"XMLParserErrorUnexpectedTextContent", ExitCode::Refused},
        {"XMLParserErrorIllegalTagName", ExitCode::Refused},
        {"XMLParserErrorNumOfValueNotInRange", ExitCode::Refused},
    };
    const auto found = codes.find(key);
    // The others are about folders, files, libraries and the callout machinery.
    return found == codes.end() ? ExitCode::Storage : found->second;
}

// Fills a report from the first class in a list that the failure is, most derived first.
class Describer {
public:
    Describer(const std::exception& failure, FailureReport& report)
        : failure_(failure), report_(report) {}

    template <class E, class Fill>
    bool as(ExitCode code, Fill fill) {
        const E* typed = dynamic_cast<const E*>(&failure_);
        if (typed == nullptr) {
            return false;
        }
        report_.exitCode = code;
        fill(*typed, report_.details);
        return true;
    }

    template <class E>
    bool as(ExitCode code) {
        return as<E>(code, [](const E&, Details&) {});
    }

private:
    const std::exception& failure_;
    FailureReport& report_;
};

// Classes whose accessors are a node and a name asked of it.
template <class E>
bool nodeAndName(Describer& d, ExitCode code) {
    return d.as<E>(code, [](const E& e, Details& out) {
        out = {{"node", nodeName(e.getObjectInvovled())}, {"name", e.getInputName()}};
    });
}

bool describeValidation(Describer& d) {
    constexpr ExitCode refused = ExitCode::Refused;
    return d.as<ex::DataArraySizeOutOfRange>(
               refused,
               [](const auto& e, Details& out) {
                   out = {{"size", std::to_string(e.getActualArraySize())},
                          {"min size", std::to_string(e.getMinArraySize())},
                          {"max size", e.getMaxArraySize() == 0
                                           ? std::string("unlimited")
                                           : std::to_string(e.getMaxArraySize())}};
               }) ||
           d.as<ex::DataTypeNotMatch>(refused,
                                      [](const auto& e, Details& out) {
                                          out = {{"declared type", e.getExpectedTypeName()},
                                                 {"value type", e.getActualTypeName()}};
                                      }) ||
           d.as<ex::ExceptionFromValidationFunction>(
               refused,
               [](const auto& e, Details& out) {
                   out = {{"key", e.getKeyName()},
                          {"value", displayText(valueToJson(e.getValue()))},
                          {"function", e.getFunctionName()},
                          {"package", e.getPackageName()}};
               }) ||
           d.as<ex::UnsupportedType>(refused,
                                     [](const auto& e, Details& out) {
                                         out = {{"type", e.getTypeName()}};
                                     }) ||
           d.as<ex::ValueIsNotInRange>(refused,
                                       [](const auto& e, Details& out) {
                                           out = {{"value", to_string(e.getValueToSetStr())},
                                                  {"min", to_string(e.getMinValueStr())},
                                                  {"max", to_string(e.getMaxValueStr())}};
                                       }) ||
           d.as<ex::ValueIsNotOneOfTheChoicesAndNotInRange>(
               refused,
               [](const auto& e, Details& out) {
                   out = {{"value", to_string(e.getValueToSetStr())},
                          {"choices", to_string(e.getChoicesStr())},
                          {"min", to_string(e.getMinValueStr())},
                          {"max", to_string(e.getMaxValueStr())}};
               }) ||
           d.as<ex::DefaultValidationFailedOnVoidType>(refused);
}

bool describeTree(Describer& d) {
    constexpr ExitCode usage = ExitCode::Usage;
    constexpr ExitCode refused = ExitCode::Refused;
    return nodeAndName<ex::NoSuchKey>(d, usage) || nodeAndName<ex::NoSuchNode>(d, usage) ||
           nodeAndName<ex::NotAKeyName>(d, usage) || nodeAndName<ex::NotANodeName>(d, usage) ||
           nodeAndName<ex::SameNameChildAlreadyExisted>(d, refused) ||
           d.as<ex::InvalidNodePath>(
               usage,
               [](const auto& e, Details& out) {
                   out = {{"node", nodeName(e.getObjectInvovled())}, {"path", e.getInvalidName()}};
               }) ||
           d.as<ex::InvalidSettingOrGroupName>(usage,
                                               [](const auto& e, Details& out) {
                                                   out = {{"name", e.getInputNodeName()}};
                                               }) ||
           d.as<ex::ErrorReadingSettingsData>(
               refused,
               [](const auto& e, Details& out) {
                   out = {{"code", std::to_string(static_cast<int>(e.getErrorCode()))},
                          {"detail", to_string(e.getDetailErrorMsg())}};
               }) ||
           d.as<ex::ErrorAddingChildNodeOrKey>(refused,
                                               [](const auto& e, Details& out) {
                                                   out = {{"node", nodeName(e.getObjectInvovled())},
                                                          {"name", e.getExistingNodeKeyName()}};
                                               }) ||
           d.as<ex::ErrorAddingTopLevelNode>(
               refused,
               [](const auto& e, Details& out) {
                   out = {{"product", e.getProductNamePassedIn()},
                          {"existing product", e.getExistingProductName()}};
               }) ||
           d.as<ex::ProductNodeAlreadyExisted>(
               refused,
               [](const auto& e, Details& out) {
                   out = {{"product", e.getInputName()}, {"existing product", e.getExistingName()}};
               }) ||
           d.as<ex::CannotAddRemoveNodeUnderReadOnlyParent>(
               refused,
               [](const auto& e, Details& out) {
                   out = {{"parent", nodeName(e.getParentObject())},
                          {"child", nodeName(e.getChildObject())}};
               }) ||
           d.as<ex::CannotAddKeyToRoot>(refused,
                                        [](const auto& e, Details& out) {
                                            out = {{"name", e.getInputName()}};
                                        }) ||
           d.as<ex::CanNotAddKeyToRootException>(refused) ||
           d.as<ex::NoFileWritePermissionOnMultipleLevels>(
               ExitCode::Storage, [](const auto& e, Details& out) {
                   out = {{"node", nodeName(e.getObjectInvovled())},
                          {"levels to update", e.getLevelNeedToBeUpdated()},
                          {"writable levels", e.getLevelsHasWritenPermissionOn()}};
               });
}

bool describeLevelsAndStorage(Describer& d) {
    constexpr ExitCode storage = ExitCode::Storage;
    return d.as<ex::UnSupportedLevel>(
               ExitCode::Usage,
               [](const auto& e, Details& out) {
                   out = {{"level", e.getInputLevel()}, {"levels", e.getSupportedLevelList()}};
               }) ||
           d.as<ex::ValueNotDefinedForGivenLevel>(
               ExitCode::Usage,
               [](const auto& e, Details& out) {
                   out = {{"key", nodeName(e.getObjectInvovled())}, {"level", e.getInputLevel()}};
               }) ||
           d.as<ex::CannotChangeValueForReadOnlySetting>(
               ExitCode::Refused,
               [](const auto& e, Details& out) {
                   out = {{"key", nodeName(e.getCausingObject())}};
               }) ||
           d.as<ex::CantModifyValuesOnReadOnlyLevel>(
               ExitCode::Refused,
               [](const auto& e, Details& out) {
                   out = {{"node", nodeName(e.getObjectInvovled())},
                          {"level", e.getLevelToModify()}};
               }) ||
           d.as<ex::ErrorSaveSettingsDueToFileIOError>(
               storage,
               [](const auto& e, Details& out) {
                   out = {{"node", nodeName(e.getCausingObject())},
                          {"file", to_string(e.getFileName())}};
               }) ||
           d.as<ex::ErrorWriteToTempSettingsFile>(
               storage,
               [](const auto& e, Details& out) {
                   out = {{"node", nodeName(e.getCausingObject())},
                          {"file", to_string(e.getCausingFilePath())},
                          {"errno", std::to_string(e.getErrorNum())},
                          {"reason", to_string(e.getReasonStr())}};
               }) ||
           d.as<ex::NoFileWritePermission>(storage,
                                           [](const auto& e, Details& out) {
                                               out = {{"node", nodeName(e.getCausingObject())},
                                                      {"level", e.getLevelName()},
                                                      {"file", to_string(e.getCausingFilePath())},
                                                      {"reason", to_string(e.getAdditionalInfo())}};
                                           }) ||
           d.as<ex::ErrorMigratePrefsBetweenReleases>(
               storage,
               [](const auto& e, Details& out) {
                   out = {{"from", e.getPrevFullRelTag()}, {"to", e.getCurrFullRelTag()}};
               }) ||
           d.as<ex::ErrorMigrateSettingsBetweenReleases>(
               storage,
               [](const auto& e, Details& out) {
                   out = {{"from", to_string(e.getSrcRelease())},
                          {"to", to_string(e.getDestRelease())}};
               }) ||
           d.as<ex::AttemptToGetValueFromVoid>(storage);
}

bool describeExportAndMerge(Describer& d) {
    constexpr ExitCode usage = ExitCode::Usage;
    constexpr ExitCode refused = ExitCode::Refused;
    const auto involved = [](const auto& e, Details& out) {
        out = {{"node", nodeName(e.getObjectInvovled())}};
    };
    return d.as<ex::ErrorExportOrImportSettingsUsingRelativePath>(
               ExitCode::Storage,
               [](const auto& e, Details& out) {
                   out = {{"path", to_string(e.getRelativePath())}};
                   if (e.getObjectInvovled()) {
                       out.emplace_back("node", nodeName(e.getObjectInvovled()));
                   }
               }) ||
           d.as<ex::ErrorExportMultipleNodesBelongsToDiffProducts>(
               usage,
               [](const auto& e, Details& out) {
                   out = {{"product", e.getProduct1Name()}, {"other product", e.getProduct2Name()}};
               }) ||
           d.as<ex::CannotExportSettingsRoot>(usage, involved) ||
           d.as<ex::CannotMergeWithSettingsRoot>(usage, involved) ||
           d.as<ex::CannotExportStandaloneSettings>(refused, involved) ||
           d.as<ex::ErrorCreateFactoryFileFromATreeNode>(refused, involved) ||
           d.as<ex::CanOnlyMergeTreeNodeWithStandaloneNode>(refused, involved) ||
           d.as<ex::ErrorMergingNodesWithDiffAttr>(
               refused,
               [](const auto& e, Details& out) {
                   out = {{"node", nodeName(e.getDesObject())},
                          {"imported node", nodeName(e.getSrcObject())},
                          {"attributes", to_string(e.getDiffAttrNameList())}};
               }) ||
           d.as<ex::ErrorMergingWithCircularReference>(refused, [](const auto& e, Details& out) {
               out = {{"node", nodeName(e.getCausingObject())},
                      {"imported node", nodeName(e.getObjectInvovled())}};
           });
}

bool describeCallouts(Describer& d) {
    constexpr ExitCode storage = ExitCode::Storage;
    const auto invoking = [](const auto& e, Details& out) {
        out = {{"function", e.getFunctionName()},
               {"package", e.getPackageName()},
               {"reason", to_string(e.getErrorMsg())}};
    };
    return d.as<ex::ValidationFunctionInvokingError>(storage, invoking) ||
           d.as<ex::RunTimeFuncInvokingError>(storage, invoking) ||
           d.as<ex::ErrorLoadingLibrary>(
               storage,
               [](const auto& e, Details& out) {
                   out = {{"library", e.getLibName()}, {"reason", to_string(e.getErrorMsg())}};
               }) ||
           d.as<ex::RuntimeFuncErrorConvertingTvArrayToAny>(
               storage,
               [](const auto& e, Details& out) {
                   out = {{"function", e.getFunctionName()},
                          {"package", e.getPackageName()},
                          {"type", boost::core::demangle(e.getTypeInfo().name())}};
               }) ||
           d.as<ex::MultipleRuntimeFuncError>(ExitCode::Refused,
                                              [](const auto& e, Details& out) {
                                                  out = {{"key", nodeName(e.getCausingObject())}};
                                              }) ||
           d.as<sc::SettingsException>(ExitCode::Refused, [](const auto& e, Details& out) {
               out = {{"message id", e.msgId()}};
           });
}

// Failures of reading text as numbers, from the value layer or from a settings file's text.
bool describeValueLayer(Describer& d) {
    constexpr ExitCode refused = ExitCode::Refused;
    return d.as<boost::bad_lexical_cast>(refused) ||
           d.as<boost::numeric::bad_numeric_cast>(refused) ||
           d.as<treestore::boostany::UnsupportedAnyType>(refused, [](const auto& e, Details& out) {
               out = {{"type", boost::core::demangle(e.getHeldType().name())}};
           });
}

void describeException(const std::exception& failure, FailureReport& report) {
    report.className = shortClassName(typeid(failure));
    report.message = failure.what();
    if (const auto* withId = dynamic_cast<const hf::except::IMsgIDException*>(&failure)) {
        const hf::resource::BaseMsgID& id = withId->get_message_id();
        report.className = id.getKey();
        report.message =
            to_string(hf::i18n::MessageCatalog::get_message(id, hf::i18n::HfLocale::global()));
        report.exitCode = messageExitCode(id.getKey());
        report.details = {{"id", withId->get_error_id_string()}};
        return;
    }
    Describer d(failure, report);
    const bool known = describeValidation(d) || describeTree(d) || describeLevelsAndStorage(d) ||
                       describeExportAndMerge(d) || describeCallouts(d) || describeValueLayer(d);
    if (!known) {
        report.exitCode = ExitCode::Storage;
    }
    // A reader that cannot even be made is no fault of the file.
    if (const auto* reading = dynamic_cast<const ex::ErrorReadingSettingsData*>(&failure)) {
        if (reading->getErrorCode() == ex::ErrorReadingSettingsData::XmlReaderCreationFailed ||
            reading->getErrorCode() == ex::ErrorReadingSettingsData::SaxServiceNotFound) {
            report.exitCode = ExitCode::Storage;
        }
    }
    // Every validation failure also carries the node it concerns and its own wide text, which
    // often repeats the class's.
    if (const auto* validation = dynamic_cast<const ex::ValidationException*>(&failure)) {
        report.details.emplace_back("node", nodeName(validation->getCausingObject()));
        const std::string reason = trimmed(to_string(validation->getErrorMsg()));
        if (!reason.empty() && reason != trimmed(report.message)) {
            report.details.emplace_back("reason", reason);
        }
    }
    report.message = trimmed(report.message);
    for (auto& detail : report.details) {
        detail.second = trimmed(detail.second);
        if (detail.second.empty()) {
            detail.second = "(none)";
        }
    }
}

}  // namespace

ToolFailure::ToolFailure(ExitCode code, std::string className, const std::string& message,
                         Details details)
    : std::runtime_error(message),
      code_(code),
      className_(std::move(className)),
      details_(std::move(details)) {}

ReaderPosition parseReaderPosition(const std::string& text) {
    static const std::regex form(R"(^LineNum=(\d+)  ColNum=(\d+)  ([\s\S]*)$)");
    ReaderPosition position;
    std::smatch match;
    if (!std::regex_match(text, match, form)) {
        position.message = text;
        return position;
    }
    const std::string line = match[1];
    std::string column = match[2];
    if (column.size() > line.size() && column.compare(0, line.size(), line) == 0) {
        column.erase(0, line.size());
    }
    position.found = true;
    position.line = std::stol(line);
    position.column = std::stol(column);
    position.message = trimmed(match[3]);
    return position;
}

FailureReport describeFailure(const std::exception_ptr& failure) {
    FailureReport report;
    try {
        try {
            std::rethrow_exception(failure);
        } catch (const ToolFailure& own) {
            report.exitCode = own.exitCode();
            report.className = own.className();
            report.message = own.what();
            report.details = own.details();
        } catch (const std::exception& e) {
            describeException(e, report);
        } catch (...) {
            report.exitCode = ExitCode::Storage;
            report.className = "UnknownFailure";
            report.message = "a failure that is no std::exception";
        }
    } catch (...) {
        // Describing must not fail in turn (an accessor reaching a node, say): keep what was
        // gathered.
        if (report.className.empty()) {
            report.className = "UnknownFailure";
        }
    }
    return report;
}

nlohmann::ordered_json toJson(const FailureReport& report) {
    nlohmann::ordered_json details = nlohmann::ordered_json::object();
    for (const auto& detail : report.details) {
        details[detail.first] = detail.second;
    }
    return {{"error",
             {{"class", report.className},
              {"message", report.message},
              {"exitCode", static_cast<int>(report.exitCode)},
              {"details", details}}}};
}

void printFailure(const FailureReport& report, bool asJson, std::ostream& out) {
    if (asJson) {
        out << toJson(report).dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
            << "\n";
        return;
    }
    out << "tvsettings: " << report.className << ": " << report.message << "\n";
    for (const auto& detail : report.details) {
        out << "  " << detail.first << ": " << detail.second << "\n";
    }
}

}  // namespace tvsettings
