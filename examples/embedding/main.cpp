// Embedding the settings core: find the root, read, write, listen.
#include <settingscore/settingscore.hpp>

#include <iostream>

int main() {
    using namespace settings::core;
    auto root = Settings::getSettingsRoot(tvutil::contextmgr::BlessedInstanceID);
    auto editor = root->getNodeByPath("editor");  // a product: its files are read now
    auto connection = editor->addListener([](const SettingsEvent& event) {
        std::cout << "changed: " << event.getObj()->getFullName() << "\n";
    });
    const int tabWidth = treestore::boostany::get<int>(editor->getAny("tabWidth", ""), false);
    std::cout << "tabWidth = " << tabWidth << "\n";
    editor->setAny("tabWidth", tabWidth + 1, "user");  // checked, announced, saved
    try {
        editor->setAny("tabWidth", 99, "user");  // outside its range 1..16
    } catch (const exception::ValueIsNotInRange& e) {
        std::cout << "refused: " << e.what() << "\n";
    }
}
