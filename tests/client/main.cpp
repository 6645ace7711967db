// An outside client of an installed settingscore: it includes only the umbrella header,
// converts values, and catches the library's failures by class and by the host's interface.
#include <settingscore/settingscore.hpp>

#include <iostream>
#include <string>
#include <vector>

namespace {

int failures = 0;

void check(bool ok, const std::string& what) {
    if (!ok) {
        std::cerr << "client: FAILED: " << what << "\n";
        ++failures;
    }
}

}  // namespace

int main() {
    namespace ba = treestore::boostany;
    namespace ex = settings::core::exception;

    std::cout << "settingscore " << treestore_version << " built " << treestore_build_date << "\n";
    check(std::string(treestore_version) == SETTINGSCORE_VERSION, "version item");

    // Conversions: a converting read, and a strict one that refuses.
    const boost::any text = std::wstring(L"42");
    check(ba::get<int>(text, true) == 42, "wstring to int32");
    check(ba::get<std::vector<int>>(boost::any(7), false) == std::vector<int>{7},
          "scalar read as a one-element vector");
    try {
        ba::get<long long>(boost::any(5), false);
        check(false, "strict read of int as int64 must refuse");
    } catch (const ba::detail::TypeNotMatch&) {
    }
    check(!ba::isEqual(boost::any(5), boost::any(5LL)), "isEqual without conversion");

    // A library failure, caught by its class and by the host's interface.
    try {
        throw ex::NoSuchKey(settings::core::ConstSettingsPtr(), "fontSize");
    } catch (const ex::NoSuchKey& e) {
        check(e.getInputName() == "fontSize", "NoSuchKey field");
    }
    try {
        throw ex::UnSupportedLevel(settings::core::ConstSettingsPtr(), "workgroup",
                                   "session, user, factory");
    } catch (const hf::except::IException& e) {
        check(std::string(e.what()) == "The level specified is not a supported level.",
              "what text through IException");
    }

    // A message-id failure, whose text comes from the installed catalogue.
    try {
        throw settings::core::makeMessageException<TOLVAN::settings::core::DataTypeNotMatch>(
            std::string("int32"), std::string("double"));
    } catch (const hf::except::IMsgIDException& e) {
        const std::wstring text =
            hf::i18n::MessageCatalog::get_message(e.get_message_id(), hf::i18n::HfLocale::global());
        std::wcout << L"catalogue text: " << text << L"\n";
        check(text.find(L"int32") != std::wstring::npos &&
                  text.find(L"double") != std::wstring::npos &&
                  text.find(L"DataTypeNotMatch(") == std::wstring::npos,
              "catalogue text with arguments");
    }

    const tvutil::contextmgr::InstanceID blessed = tvutil::contextmgr::BlessedInstanceID;
    check(tvutil::contextmgr::UndefinedInstanceID < blessed, "instance id order");

    if (failures == 0) {
        std::cout << "client: ok\n";
    }
    return failures == 0 ? 0 : 1;
}
