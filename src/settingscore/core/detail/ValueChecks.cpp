#include <settingscore/core/detail/ValueChecks.hpp>

#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/exception/ValidationExceptions.hpp>
#include <settingscore/treestore/boostany/BoostAny.hpp>
#include <settingscore/treestore/boostany/detail/VisitAny.hpp>

#include <platform/hf/io/Uostream.hpp>

#include <boost/variant/static_visitor.hpp>

#include <shared_mutex>
#include <type_traits>

namespace settings {
namespace core {
namespace detail {

namespace ba = treestore::boostany;

namespace {

template <class T>
void conformTo(boost::any& value) {
    if (value.type() == typeid(T)) {
        return;
    }
    try {
        value = ba::get<T>(value, false);
    } catch (...) {
        throw makeMessageException<TOLVAN::settings::core::DataTypeNotMatch>(
            ba::typeNameOf(boost::any(T())), ba::typeNameOf(value));
    }
}

struct FactsVisitor {
    boost::optional<TypeFacts> operator()() const { return boost::none; }

    template <class S>
    boost::optional<TypeFacts> operator()(const S& held) const {
        if constexpr (ba::isVectorType<S>) {
            return TypeFacts{ba::typeCodeOf<S>(), &conformTo<S>, true,
                             static_cast<unsigned>(held.size())};
        } else {
            return TypeFacts{ba::typeCodeOf<S>(), &conformTo<S>, false, 1u};
        }
    }
};

// A value's text in messages: the value layer's number-to-text rule; a text is itself.
template <class T>
std::wstring textOf(const T& value) {
    return ba::get<std::wstring>(boost::any(value), true);
}

template <class B>
std::wstring boundText(const boost::optional<B>& bound) {
    return bound ? textOf(*bound) : std::wstring();
}

template <class T>
void checkElement(const ConstSettingsPtr& key, const SettingsKeyMetaData<T>& limits, const T& v) {
    // For a text the bounds limit its length.
    const auto measure = [&v]() {
        if constexpr (std::is_same_v<T, std::wstring>) {
            return static_cast<unsigned int>(v.size());
        } else {
            return v;
        }
    }();
    const auto& min = limits.getMin();
    const auto& max = limits.getMax();
    const bool choices = limits.getListOfChoice().has_value();
    const bool passLow = min ? *min <= measure : !(!max && choices);
    const bool passHigh = max ? measure <= *max : !(!min && choices);
    if (passLow && passHigh) {
        return;  // range and choices are alternatives: inside the range is enough
    }
    if (!choices) {
        throw exception::ValueIsNotInRange(key, textOf(v), boundText(min), boundText(max));
    }
    for (const auto& choice : *limits.getListOfChoice()) {
        if (choice == v) {
            return;
        }
    }
    throw exception::ValueIsNotOneOfTheChoicesAndNotInRange(
        key, textOf(v), joinChoices(*limits.getListOfChoice()), boundText(min), boundText(max));
}

struct RangeVisitor {
    const ConstSettingsPtr& key;
    const SettingsKeyMetaData<boost::any>& metaData;

    void operator()() const {}

    template <class S>
    void operator()(const S& held) const {
        using Scalar = ba::ScalarOf<S>;
        const SettingsKeyMetaData<Scalar> limits(metaData);
        if constexpr (ba::isVectorType<S>) {
            for (const auto& element : held) {
                checkElement<Scalar>(key, limits, element);
            }
        } else {
            checkElement<Scalar>(key, limits, held);
        }
    }
};

class ValidatorCall : public boost::static_visitor<bool> {
public:
    ValidatorCall(const ConstSettingsPtr& parent, const std::string& keyName,
                  const boost::any& value)
        : parent_(parent), keyName_(keyName), value_(value) {}

    bool operator()(const boost::mpl::void_&) const { return false; }

    template <class Validator>
    bool operator()(const Validator& validator) const {
        validator.invokeValidationFunction(parent_, keyName_, value_);
        return true;
    }

private:
    const ConstSettingsPtr& parent_;
    const std::string& keyName_;
    const boost::any& value_;
};

template <class... Ts>
TypeConformer conformerAt(ba::detail::TypeList<Ts...>, int index) {
    const TypeConformer conformers[] = {&conformTo<Ts>...};
    return conformers[index];
}

}  // namespace

boost::optional<TypeFacts> typeFactsOf(const boost::any& value) {
    return ba::detail::visitAny(value, FactsVisitor{});
}

TypeConformer conformerFor(int typeCode, bool isArray) {
    if (typeCode < 1 || typeCode > static_cast<int>(ba::ScalarTypes::size)) {
        return nullptr;
    }
    return isArray ? conformerAt(ba::VectorTypes{}, typeCode - 1)
                   : conformerAt(ba::ScalarTypes{}, typeCode - 1);
}

unsigned arraySizeOf(const boost::any& value) {
    const auto facts = typeFactsOf(value);
    return facts ? facts->elementCount : 0u;
}

void checkRangeAndChoices(const ConstSettingsPtr& key,
                          const SettingsKeyMetaData<boost::any>& metaData,
                          const boost::any& value) {
    if (metaData.isEmpty()) {
        return;  // no bound and no choice: every value passes
    }
    ba::detail::visitAny(value, RangeVisitor{key, metaData});
}

template <class T>
std::wstring joinChoices(const std::vector<T>& choices) {
    hf::io::uostream stream;
    for (const auto& choice : choices) {
        stream << textOf(choice) << L", ";
    }
    stream << std::endl;
    std::wstring text = stream.str();
    const auto cut = text.rfind(L", ");
    return cut == std::wstring::npos ? text : text.substr(0, cut);
}

#define SETTINGSCORE_INSTANTIATE_JOIN(T) template std::wstring joinChoices(const std::vector<T>&);
SETTINGSCORE_INSTANTIATE_JOIN(std::wstring)
SETTINGSCORE_INSTANTIATE_JOIN(bool)
SETTINGSCORE_INSTANTIATE_JOIN(signed char)
SETTINGSCORE_INSTANTIATE_JOIN(unsigned char)
SETTINGSCORE_INSTANTIATE_JOIN(short)
SETTINGSCORE_INSTANTIATE_JOIN(unsigned short)
SETTINGSCORE_INSTANTIATE_JOIN(int)
SETTINGSCORE_INSTANTIATE_JOIN(unsigned int)
SETTINGSCORE_INSTANTIATE_JOIN(long long)
SETTINGSCORE_INSTANTIATE_JOIN(unsigned long long)
SETTINGSCORE_INSTANTIATE_JOIN(float)
SETTINGSCORE_INSTANTIATE_JOIN(double)
#undef SETTINGSCORE_INSTANTIATE_JOIN

bool invokeValidator(const ValidatorVariant& validator, const ConstSettingsPtr& parent,
                     const std::string& keyName, const boost::any& value) {
    return boost::apply_visitor(ValidatorCall(parent, keyName, value), validator);
}

std::shared_mutex& keyCacheMutex() {
    static std::shared_mutex* const mutex = new std::shared_mutex();
    return *mutex;
}

}  // namespace detail
}  // namespace core
}  // namespace settings
