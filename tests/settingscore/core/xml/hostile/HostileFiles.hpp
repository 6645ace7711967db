// Hostile settings files written straight to disk, piece by piece, so that a 50 MB file never
// sits in the test's own memory; and the account of a parse that the tests compare.
#pragma once

#include "settingscore/core/xml/reading/ReadingFixture.hpp"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace hostiletest {

namespace fs = std::filesystem;
namespace sc = settings::core;
using readingtest::ErrorReadingSettingsData;

constexpr char declaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr char settingsNamespace[] = " xmlns=\"urn:lindqvare.tolvan.settings\"";

// Writes a file from text and repeated units.
class FileWriter {
public:
    explicit FileWriter(const fs::path& file) : file_(file) {
        fs::create_directories(file.parent_path());
        out_.open(file, std::ios::binary | std::ios::trunc);
    }

    FileWriter& text(const std::string& text) {
        out_ << text;
        return *this;
    }

    // `count` copies of `unit`, written in blocks of about 1 MiB.
    FileWriter& repeat(const std::string& unit, std::size_t count) {
        const std::size_t perBlock = std::max<std::size_t>(1, (1u << 20) / unit.size());
        std::string block;
        for (std::size_t i = 0; i < std::min(perBlock, count); ++i) {
            block += unit;
        }
        while (count > 0) {
            const std::size_t now = std::min(perBlock, count);
            out_.write(block.data(), static_cast<std::streamsize>(now * unit.size()));
            count -= now;
        }
        return *this;
    }

    // Closes the file; the path.
    fs::path done() {
        out_.close();
        if (!out_) {
            throw std::runtime_error("cannot write " + file_.string());
        }
        return file_;
    }

private:
    fs::path file_;
    std::ofstream out_;
};

// "parsed <products's child count>", or "code <n>: <detail text>" for the reader's failure.
// Anything else is thrown on.
inline std::string parseOutcome(sc::SettingsFileParser& parser, const fs::path& file) {
    try {
        const auto top = parser.parse(file.wstring());
        return "parsed " + std::to_string(top ? top->getChildren().size() : 0);
    } catch (const ErrorReadingSettingsData& failure) {
        return "code " + std::to_string(failure.getErrorCode()) + ": " +
               readingtest::detailText(failure);
    }
}

}  // namespace hostiletest
