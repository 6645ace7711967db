#include <settingscore/core/xml/ValueWriters.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/xml/detail/NodeWriter.hpp>
#include <settingscore/core/xml/detail/SettingsFileText.hpp>
#include <settingscore/treestore/boostany/BoostAny.hpp>
#include <settingscore/treestore/boostany/detail/VisitAny.hpp>

#include <vector>

namespace settings {
namespace core {
namespace detail {

namespace {

namespace ba = treestore::boostany;

template <class T>
void writeValueLine(std::string& out, unsigned depth, const T& value) {
    writeIndent(out, static_cast<int>(depth));
    out += "<value>";
    writeValueText(out, value);
    out += "</value>\n";
}

// Whether a value holds one of the vector types.
struct HoldsVector {
    bool operator()() const { return false; }
    template <class S>
    bool operator()(const S&) const {
        return ba::isVectorType<S>;
    }
};

template <class T>
void writeVectorLines(std::string& out, unsigned depth, const std::vector<T>& values) {
    for (const T& value : values) {
        writeValueLine(out, depth, value);
    }
}

// vector<bool> hands out proxies: each bit goes out as a bool, the same way as a scalar.
void writeVectorLines(std::string& out, unsigned depth, const std::vector<bool>& values) {
    for (const bool value : values) {
        writeValueLine(out, depth, value);
    }
}

// One "value" line per element. A value of the key's own type is the rule; anything else is
// converted to it, a vector as a vector and a scalar as a scalar.
template <class T>
void writeValueLines(std::string& out, unsigned depth, const boost::any& value) {
    if (const T* scalar = boost::any_cast<T>(&value)) {
        writeValueLine(out, depth, *scalar);
    } else if (const auto* vector = boost::any_cast<std::vector<T>>(&value)) {
        writeVectorLines(out, depth, *vector);
    } else if (ba::detail::visitAny(value, HoldsVector())) {
        writeVectorLines(out, depth, ba::get<std::vector<T>>(value, true));
    } else {
        writeValueLine(out, depth, ba::get<T>(value, true));
    }
}

// The stored value that the file holds for `level`; with no level, the effective stored value.
// Run-time defaults are never run here: what a file holds of them is the function itself.
boost::any valueToWrite(const SettingsImpl& key, const ReadAccess& lock, const std::string& level) {
    return level.empty() ? key.effectiveValue(lock, false) : key.valueAtLevel(lock, level, false);
}

template <class T>
void writeTypeElement(std::string& out, const SettingsImpl& key, const ReadAccess& lock,
                      const std::string& level, unsigned depth, const boost::any& value) {
    const char* const typeWord = ba::detail::scalarTypeName<T>();
    const RunTimeDefaultVariant& runTimeDefault = NodeWriter::runTimeDefaultOf(lock, key);
    const boost::optional<std::string> belongingLevel = belongingLevelOf(runTimeDefault);

    writeIndent(out, static_cast<int>(depth));
    out += '<';
    out += typeWord;
    // A missing attribute reads as 1, so 1 is never written; a key without limits writes none.
    if (const auto bounds = NodeWriter::arrayBoundsOf(lock, key)) {
        if (bounds->getMinArraySize() != 1) {
            out += " minArraySize=\"";
            writeValueText(out, bounds->getMinArraySize());
            out += '"';
        }
        if (bounds->getMaxArraySize() != 1) {
            out += " maxArraySize=\"";
            writeValueText(out, bounds->getMaxArraySize());
            out += '"';
        }
    }
    if (!belongingLevel && value.empty() && key.effectiveValue(lock, false).empty()) {
        out += " undef=\"true\"";
    }
    out += ">\n";
    if (belongingLevel && *belongingLevel == level) {
        writeFunctionElement(out, static_cast<int>(depth) + 1, "runtimedefault", runTimeDefault);
    } else if (!value.empty()) {
        writeValueLines<T>(out, depth + 1, value);
    }
    writeIndent(out, static_cast<int>(depth));
    out += "</";
    out += typeWord;
    out += ">\n";
}

template <class T>
void writeTyped(std::string& out, const SettingsImpl& key, const ReadAccess& lock,
                const std::string& level, unsigned depth) {
    writeTypeElement<T>(out, key, lock, level, depth, valueToWrite(key, lock, level));
}

// Picks the type element from the type that the value holds, scalar or vector.
class AnyTypeElement {
public:
    AnyTypeElement(std::string& out, const SettingsImpl& key, const ReadAccess& lock,
                   const std::string& level, unsigned depth, const boost::any& value)
        : out_(out), key_(key), lock_(lock), level_(level), depth_(depth), value_(value) {}

    void operator()() const {}  // an empty value writes no element at all

    template <class S>
    void operator()(const S&) const {
        writeTypeElement<ba::ScalarOf<S>>(out_, key_, lock_, level_, depth_, value_);
    }

private:
    std::string& out_;
    const SettingsImpl& key_;
    const ReadAccess& lock_;
    const std::string& level_;
    unsigned depth_;
    const boost::any& value_;
};

void writeAnyType(std::string& out, const SettingsImpl& key, const ReadAccess& lock,
                  const std::string& level, unsigned depth) {
    const boost::any value = valueToWrite(key, lock, level);
    ba::detail::visitAny(value, AnyTypeElement(out, key, lock, level, depth, value));
}

template <class... Ts>
ValueWriter writerAt(ba::detail::TypeList<Ts...>, int index) {
    const ValueWriter writers[] = {&writeTyped<Ts>...};
    return writers[index];
}

}  // namespace

template <class T>
ValueWriter typedValueWriter() {
    static_assert(ba::isScalarType<T>, "a type element names one of the twelve scalar types");
    return &writeTyped<T>;
}

ValueWriter valueWriterForTypeCode(int typeCode) {
    if (typeCode < 1 || typeCode > static_cast<int>(ba::ScalarTypes::size)) {
        return nullptr;
    }
    return writerAt(ba::ScalarTypes{}, typeCode - 1);
}

ValueWriter anyTypeValueWriter() {
    return &writeAnyType;
}

#define SETTINGSCORE_INSTANTIATE_VALUE_WRITER(T) template ValueWriter typedValueWriter<T>();
SETTINGSCORE_INSTANTIATE_VALUE_WRITER(std::wstring)
SETTINGSCORE_INSTANTIATE_VALUE_WRITER(bool)
SETTINGSCORE_INSTANTIATE_VALUE_WRITER(signed char)
SETTINGSCORE_INSTANTIATE_VALUE_WRITER(unsigned char)
SETTINGSCORE_INSTANTIATE_VALUE_WRITER(short)
SETTINGSCORE_INSTANTIATE_VALUE_WRITER(unsigned short)
SETTINGSCORE_INSTANTIATE_VALUE_WRITER(int)
SETTINGSCORE_INSTANTIATE_VALUE_WRITER(unsigned int)
SETTINGSCORE_INSTANTIATE_VALUE_WRITER(long long)
SETTINGSCORE_INSTANTIATE_VALUE_WRITER(unsigned long long)
SETTINGSCORE_INSTANTIATE_VALUE_WRITER(float)
SETTINGSCORE_INSTANTIATE_VALUE_WRITER(double)
#undef SETTINGSCORE_INSTANTIATE_VALUE_WRITER

}  // namespace detail
}  // namespace core
}  // namespace settings
