// valuedemo: prints the library's version and how a few values read through the value layer,
// strictly and with conversion, including the failures a bad read gives.
#include <settingscore/settingscore.hpp>

#include <iostream>
#include <string>
#include <vector>

namespace {

namespace ba = treestore::boostany;

// One read of `value` as T, printed as "<held type> -> <T>: <result or failure>".
template <class T>
void showRead(const boost::any& value, bool allowConversion) {
    std::string target;
    if constexpr (ba::isScalarType<T>) {
        ba::writeTypeName<T>(target);
    } else {
        ba::writeArrayTypeName<typename T::value_type>(target);
    }
    std::cout << "  " << ba::typeNameOf(value) << " -> " << target
              << (allowConversion ? " (converting): " : " (strict):     ");
    try {
        const boost::any result = ba::get<T>(value, allowConversion);
        std::cout << hf::i18n::to_string(ba::get<std::wstring>(result, true)) << "\n";
    } catch (const std::exception& e) {
        std::cout << "refused: " << e.what() << "\n";
    }
}

}  // namespace

int main() {
    std::cout << "settingscore " << treestore_version << " (built " << treestore_build_date
              << ")\n\n";

    std::cout << "Reads of a value through treestore::boostany::get<T>:\n";
    showRead<double>(boost::any(0.1f), true);
    showRead<std::wstring>(boost::any(0.1f), true);
    showRead<std::wstring>(boost::any(1.0 / 3.0), true);
    showRead<int>(boost::any(std::wstring(L"65")), true);
    showRead<signed char>(boost::any(std::wstring(L"200")), true);
    showRead<bool>(boost::any(std::wstring(L"true")), true);
    showRead<bool>(boost::any(0.5), true);
    showRead<unsigned int>(boost::any(-0.5), true);
    showRead<int>(boost::any(std::vector<int>{7}), false);
    showRead<int>(boost::any(std::vector<int>{7, 8}), false);
    showRead<long long>(boost::any(5), false);
    showRead<long long>(boost::any(5), true);

    std::cout << "\nEquality never converts: int32 5 == int64 5 is "
              << (ba::isEqual(boost::any(5), boost::any(5LL)) ? "true" : "false") << "\n";

    try {
        throw settings::core::makeMessageException<TOLVAN::settings::core::DataTypeNotMatch>(
            std::string("int32"), std::string("array of double"));
    } catch (const hf::except::IMsgIDException& e) {
        std::cout << "A message-id failure, " << e.what() << ", reads in the catalogue as:\n  "
                  << hf::i18n::to_string(hf::i18n::MessageCatalog::get_message(
                         e.get_message_id(), hf::i18n::HfLocale::global()))
                  << "\n";
    }
    return 0;
}
