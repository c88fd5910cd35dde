// SPDX-License-Identifier: MIT

#include <filesystem>
#include <fstream>

#include <KXFoundation/Testing/BundleFolder.h>

namespace kx::testing {

namespace fs = std::filesystem;

namespace {

std::string quoted(std::string_view text) {
    std::string answer = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') answer += '\\';
        answer += c;
    }
    return answer + '"';
}

std::string xmlText(std::string_view text) {
    std::string answer;
    for (const char c : text) {
        if (c == '<') {
            answer += "&lt;";
        } else if (c == '&') {
            answer += "&amp;";
        } else {
            answer += c;
        }
    }
    return answer;
}

}  // namespace

BundleFolder::BundleFolder(std::string path) : path_(std::move(path)) {
    fs::create_directories(path_);
}

BundleFolder& BundleFolder::addStrings(std::string_view language, Texts texts, std::string_view table) {
    std::string contents;
    for (const auto& [key, text] : texts) contents += quoted(key) + " = " + quoted(text) + ";\n";
    return addStringsFile(language, contents, table);
}

BundleFolder& BundleFolder::addStringsFile(std::string_view language, std::string_view contents,
                                           std::string_view table) {
    return addFile(std::string(language).append(".lproj/").append(table).append(".strings"), contents);
}

BundleFolder& BundleFolder::addLocalization(std::string_view language) {
    fs::create_directories(path_ + '/' + std::string(language).append(".lproj"));
    return *this;
}

BundleFolder& BundleFolder::setInfo(std::string_view key, std::string_view text) {
    info_.insert_or_assign(std::string(key), std::string(text));
    std::string contents = R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)";
    for (const auto& [name, value] : info_) {
        contents += "<key>" + xmlText(name) + "</key><string>" + xmlText(value) + "</string>";
    }
    return addFile("Info.plist", contents + "</dict></plist>");
}

BundleFolder& BundleFolder::addFile(std::string_view name, std::string_view contents) {
    const fs::path file = fs::path(path_) / name;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << contents;
    return *this;
}

}  // namespace kx::testing
