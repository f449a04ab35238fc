#pragma once

#include "platform/bundle/PropertyList.hpp"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quorvale::platform::bundle {

/// A directory `X.app` that holds a program and what belongs to it:
///
///     Contents/Info.plist     the information dictionary, an XML or binary property list
///     Contents/Linux/         the program, named by the dictionary's "CFBundleExecutable"
///     Contents/Resources/     images, found by name; tables of texts
///
/// The dictionary is read once, when the bundle is made. One that is missing, broken or too large is as an empty one.
/// Constant afterwards, so any thread may read it.
class Bundle {
public:
    /// The bundle of this process's program.
    static const Bundle& main();

    /// The bundle in which the program at `path`, an absolute path, lies as X.app/Contents/Linux/NAME. A program
    /// anywhere else has its own directory as its bundle, with an empty information dictionary.
    static Bundle ofExecutable(const std::filesystem::path& path);

    /// The bundle at `path`. A relative path is taken from the current directory.
    explicit Bundle(const std::filesystem::path& path);

    /// Absolute, without a slash at its end.
    [[nodiscard]] std::string bundlePath() const { return path_.string(); }

    /// The text of "CFBundleIdentifier".
    [[nodiscard]] std::optional<std::string> bundleIdentifier() const;

    /// The text that the information dictionary holds for `key`; none when it holds none or another type.
    [[nodiscard]] std::optional<std::string> infoText(std::string_view key) const;

    /// Where images and tables of texts lie; it need not exist.
    [[nodiscard]] std::string resourcesPath() const;

    /// The file of the image `name` (without extension): NAME.svg, or else NAME.png. None for a name with a slash.
    [[nodiscard]] std::optional<std::string> resourcePath(std::string_view name) const;

    /// Where "CFBundleExecutable" says that the program is; that file need not exist. None when the dictionary
    /// names no program or one outside the bundle.
    [[nodiscard]] std::optional<std::string> executablePath() const;

private:
    Bundle(std::filesystem::path path, TextEntries information);

    std::filesystem::path path_;
    TextEntries information_;
};

} // namespace quorvale::platform::bundle
