#include "platform/bundle/Bundle.hpp"

#include <plist/plist.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace quorvale::platform::bundle {

namespace fs = std::filesystem;

namespace {

/// The dictionary at the top of a property list; null where the contents are something else.
std::shared_ptr<void> dictionaryOf(const std::string& contents) {
    // Newer libraries know more formats. Asked for one of these two, they don't guess.
    const auto parse = contents.starts_with("bplist") ? plist_from_bin : plist_from_xml;
    plist_t parsed = nullptr;
    parse(contents.data(), static_cast<std::uint32_t>(contents.size()), &parsed);
    const std::shared_ptr<void> root(parsed, plist_free);
    return root && plist_get_node_type(root.get()) == PLIST_DICT ? root : nullptr;
}

} // namespace

const Bundle& Bundle::main() {
    static const Bundle bundle = [] {
        std::error_code error;
        return ofExecutable(fs::read_symlink("/proc/self/exe", error));
    }();
    return bundle;
}

Bundle Bundle::ofExecutable(const fs::path& path) {
    const auto programs = path.parent_path();
    const auto contents = programs.parent_path();
    const auto bundle = contents.parent_path();
    const auto isInBundle =
        programs.filename() == "Linux" && contents.filename() == "Contents" && bundle.extension() == ".app";
    return Bundle(isInBundle ? bundle : programs);
}

Bundle::Bundle(fs::path path) : path_(std::move(path)) {
    const auto file = path_ / "Contents" / "Info.plist";
    std::error_code error;
    if (!fs::exists(file, error)) {
        return;
    }
    std::ifstream stream(file, std::ios::binary);
    information_ = dictionaryOf({std::istreambuf_iterator<char>(stream), {}});
    if (!information_) {
        infoError_ = file.string() + ": no property list, or not one of a dictionary";
    }
}

std::optional<std::string> Bundle::bundleIdentifier() const {
    return infoText("CFBundleIdentifier");
}

std::optional<std::string> Bundle::infoText(std::string_view key) const {
    auto* const entry = information_ ? plist_dict_get_item(information_.get(), std::string(key).c_str()) : nullptr;
    if (!entry || plist_get_node_type(entry) != PLIST_STRING) {
        return std::nullopt;
    }
    return plist_get_string_ptr(entry, nullptr);
}

std::string Bundle::resourcesPath() const {
    return (path_ / "Contents" / "Resources").string();
}

std::string Bundle::resourcePath(std::string_view name) const {
    return resourcesPath().append("/").append(name).append(".svg");
}

std::optional<std::string> Bundle::executablePath() const {
    const auto name = infoText("CFBundleExecutable");
    return name ? std::optional((path_ / "Contents" / "Linux" / *name).string()) : std::nullopt;
}

} // namespace quorvale::platform::bundle
