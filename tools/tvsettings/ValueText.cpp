#include "ValueText.hpp"

#include "Failure.hpp"

#include <settingscore/settingscore.hpp>

#include <boost/lexical_cast.hpp>
#include <boost/numeric/conversion/cast.hpp>
#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <charconv>
#include <cmath>
#include <limits>
#include <type_traits>

namespace tvsettings {

namespace {

namespace ba = treestore::boostany;
using Json = nlohmann::ordered_json;

// The shortest decimal that reads back as `value`, carried as a double: a float 0.1 shows as
// 0.1, not as the 0.100000001490116 its widening would print.
Json floatingToJson(float value) {
    if (std::isnan(value)) {
        return "nan";
    }
    if (std::isinf(value)) {
        return value > 0 ? "inf" : "-inf";
    }
    char text[64];
    const auto written = std::to_chars(text, text + sizeof text, value);
    double wide = value;
    std::from_chars(text, written.ptr, wide);
    return wide;
}

Json floatingToJson(double value) {
    if (std::isnan(value)) {
        return "nan";
    }
    if (std::isinf(value)) {
        return value > 0 ? "inf" : "-inf";
    }
    return value;  // the JSON writer prints the shortest round-trip form of a double
}

Json scalarToJson(const std::wstring& value) {
    return hf::i18n::to_string(value);
}
Json scalarToJson(bool value) {
    return value;
}
Json scalarToJson(float value) {
    return floatingToJson(value);
}
Json scalarToJson(double value) {
    return floatingToJson(value);
}
// int8 and uint8 are numbers here, never characters.
template <class Integer>
Json scalarToJson(Integer value) {
    static_assert(std::is_integral<Integer>::value, "integers only");
    if constexpr (std::is_signed<Integer>::value) {
        return static_cast<long long>(value);
    } else {
        return static_cast<unsigned long long>(value);
    }
}

struct ToJson : boost::static_visitor<Json> {
    Json operator()(const boost::mpl::void_&) const { return nullptr; }

    // vector<bool> hands out proxies, not references.
    Json operator()(const std::vector<bool>& values) const {
        Json array = Json::array();
        for (const bool element : values) {
            array.push_back(element);
        }
        return array;
    }

    template <class T>
    Json operator()(const std::vector<T>& values) const {
        Json array = Json::array();
        for (const T& element : values) {
            array.push_back(scalarToJson(element));
        }
        return array;
    }

    template <class T>
    Json operator()(const T& value) const {
        return scalarToJson(value);
    }
};

ToolFailure notAValueOf(const std::string& word, int typeCode, const std::string& reason) {
    const std::string type = typeNameOfCode(typeCode);
    return ToolFailure(ExitCode::Refused, "NotAValueOfType",
                       "\"" + word + "\" is not a value of type " + type + ": " + reason,
                       {{"value", word}, {"type", type}, {"reason", reason}});
}

template <class T>
T parseScalar(const std::string& word, int typeCode) {
    if constexpr (std::is_same<T, std::wstring>::value) {
        return hf::i18n::to_ustring(word);
    } else if constexpr (std::is_same<T, bool>::value) {
        // The value layer reads only "0" and "1" (and their signed forms) as bool; a person
        // also types the words.
        if (word == "true" || word == "1") {
            return true;
        }
        if (word == "false" || word == "0") {
            return false;
        }
        throw notAValueOf(word, typeCode, "a bool is true, false, 1 or 0");
    } else {
        try {
            return ba::get<T>(boost::any(hf::i18n::to_ustring(word)), true);
        } catch (const boost::numeric::positive_overflow&) {
            throw notAValueOf(word, typeCode,
                              "above the largest " + typeNameOfCode(typeCode) + " (" +
                                  scalarToJson(std::numeric_limits<T>::max()).dump() + ")");
        } catch (const boost::numeric::negative_overflow&) {
            throw notAValueOf(word, typeCode,
                              "below the smallest " + typeNameOfCode(typeCode) + " (" +
                                  scalarToJson(std::numeric_limits<T>::lowest()).dump() + ")");
        } catch (const boost::bad_lexical_cast&) {
            throw notAValueOf(word, typeCode, "not a number of that type");
        } catch (const std::exception& failure) {
            throw notAValueOf(word, typeCode, failure.what());
        }
    }
}

template <class T>
boost::any parseAs(int typeCode, const std::vector<std::string>& words, bool asArray) {
    if (!asArray) {
        return parseScalar<T>(words.at(0), typeCode);
    }
    std::vector<T> values;
    values.reserve(words.size());
    for (const std::string& word : words) {
        values.push_back(parseScalar<T>(word, typeCode));
    }
    return values;
}

}  // namespace

std::string typeNameOfCode(int typeCode) {
    // As settings files and the library's messages spell them, in type code order.
    static const char* const names[] = {"string", "bool",   "int8",  "uint8",  "int16", "uint16",
                                        "int32",  "uint32", "int64", "uint64", "float", "double"};
    if (typeCode >= 1 && typeCode <= 12) {
        return names[typeCode - 1];
    }
    return typeCode == anyTypeCode ? "any" : "unknown";
}

boost::any parseValue(int typeCode, const std::vector<std::string>& words, bool asArray) {
    switch (typeCode) {
        case 1:
            return parseAs<std::wstring>(typeCode, words, asArray);
        case 2:
            return parseAs<bool>(typeCode, words, asArray);
        case 3:
            return parseAs<signed char>(typeCode, words, asArray);
        case 4:
            return parseAs<unsigned char>(typeCode, words, asArray);
        case 5:
            return parseAs<short>(typeCode, words, asArray);
        case 6:
            return parseAs<unsigned short>(typeCode, words, asArray);
        case 7:
            return parseAs<int>(typeCode, words, asArray);
        case 8:
            return parseAs<unsigned int>(typeCode, words, asArray);
        case 9:
            return parseAs<long long>(typeCode, words, asArray);
        case 10:
            return parseAs<unsigned long long>(typeCode, words, asArray);
        case 11:
            return parseAs<float>(typeCode, words, asArray);
        case 12:
            return parseAs<double>(typeCode, words, asArray);
        case anyTypeCode:
            return parseAs<std::wstring>(typeCode, words, asArray || words.size() != 1);
        default:
            throw ToolFailure(ExitCode::Refused, "UnknownKeyType",
                              "the key's declared type code " + std::to_string(typeCode) +
                                  " takes no value from the command line",
                              {{"type code", std::to_string(typeCode)}});
    }
}

Json valueToJson(const boost::any& value) {
    return boost::apply_visitor(ToJson(), ba::convertAnyToVariant(value));
}

std::string displayText(const Json& value) {
    if (value.is_null()) {
        return "(undefined)";
    }
    if (value.is_array()) {
        std::string text = "[";
        for (std::size_t i = 0; i < value.size(); ++i) {
            text += (i == 0 ? "" : ", ") + displayText(value[i]);
        }
        return text + "]";
    }
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::vector<std::string> plainLines(const Json& value) {
    std::vector<std::string> lines;
    if (value.is_array()) {
        for (const auto& element : value) {
            const auto inner = plainLines(element);
            lines.insert(lines.end(), inner.begin(), inner.end());
        }
    } else if (value.is_string()) {
        lines.push_back(value.get<std::string>());
    } else if (!value.is_null()) {
        lines.push_back(value.dump());
    }
    return lines;
}

}  // namespace tvsettings
