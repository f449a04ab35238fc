#include "platform/bundle/Bundle.hpp"

#include <array>
#include <fstream>
#include <system_error>
#include <utility>

namespace quorvale::platform::bundle {

namespace fs = std::filesystem;

namespace {

fs::path withoutTrailingSlash(const fs::path& path) {
    std::error_code error;
    auto absolute = fs::absolute(path, error).lexically_normal();
    return absolute.has_filename() || !absolute.has_relative_path() ? absolute : absolute.parent_path();
}

std::string contentsOf(const fs::path& file) {
    std::error_code error;
    // Opening a pipe would wait for a writer.
    if (!fs::is_regular_file(file, error)) {
        return {};
    }
    std::ifstream stream(file, std::ios::binary);
    // One byte more, so that a larger list is seen to be too large.
    std::string contents(largestPropertyList + 1, '\0');
    stream.read(contents.data(), static_cast<std::streamsize>(contents.size()));
    contents.resize(static_cast<std::size_t>(stream.gcount()));
    return contents;
}

bool isPlainName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && !name.contains('/');
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
    if (programs.filename() == "Linux" && contents.filename() == "Contents" && bundle.extension() == ".app") {
        return Bundle(bundle);
    }
    return {withoutTrailingSlash(programs), TextEntries()};
}

Bundle::Bundle(const fs::path& path)
    : Bundle(withoutTrailingSlash(path), textEntriesOfPropertyList(contentsOf(path / "Contents" / "Info.plist"))) {}

Bundle::Bundle(fs::path path, TextEntries information) : path_(std::move(path)), information_(std::move(information)) {}

std::optional<std::string> Bundle::bundleIdentifier() const {
    return infoText("CFBundleIdentifier");
}

std::optional<std::string> Bundle::infoText(std::string_view key) const {
    const auto entry = information_.find(key);
    return entry == information_.end() ? std::nullopt : std::optional(entry->second);
}

std::string Bundle::resourcesPath() const {
    return (path_ / "Contents" / "Resources").string();
}

std::optional<std::string> Bundle::resourcePath(std::string_view name) const {
    if (!isPlainName(name)) {
        return std::nullopt;
    }
    constexpr std::array extensions{".svg", ".png"};
    for (const auto* extension : extensions) {
        auto file = fs::path(resourcesPath()) / name;
        file += extension;
        std::error_code error;
        if (fs::is_regular_file(file, error)) {
            return file.string();
        }
    }
    return std::nullopt;
}

std::optional<std::string> Bundle::executablePath() const {
    const auto name = infoText("CFBundleExecutable");
    if (!name || !isPlainName(*name)) {
        return std::nullopt;
    }
    return (path_ / "Contents" / "Linux" / *name).string();
}

} // namespace quorvale::platform::bundle
