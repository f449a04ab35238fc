#pragma once

#include <filesystem>
#include <memory>
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
/// The dictionary is read once, when the bundle is made, and is as trusted as the program beside it. One that is
/// missing or broken is as an empty one. Constant afterwards, so any thread may read it.
class Bundle {
public:
    /// The bundle of this process's program.
    static const Bundle& main();

    /// The bundle in which the program at `path`, an absolute path, lies as X.app/Contents/Linux/NAME. A program
    /// anywhere else has its own directory as its bundle.
    static Bundle ofExecutable(const std::filesystem::path& path);

    explicit Bundle(std::filesystem::path path);

    /// As it was given.
    [[nodiscard]] std::string bundlePath() const { return path_.string(); }

    /// The text of "CFBundleIdentifier".
    [[nodiscard]] std::optional<std::string> bundleIdentifier() const;

    /// The text that the information dictionary holds for `key`; none when it holds none or another type.
    [[nodiscard]] std::optional<std::string> infoText(std::string_view key) const;

    /// Why there is an Info.plist and no dictionary, as a text for the log; none where there are both or neither.
    [[nodiscard]] const std::optional<std::string>& infoError() const { return infoError_; }

    /// Where images and tables of texts lie; it need not exist.
    [[nodiscard]] std::string resourcesPath() const;

    /// The file of the image `name`, which is NAME.svg there; it need not exist.
    [[nodiscard]] std::string resourcePath(std::string_view name) const;

    /// Where "CFBundleExecutable" says that the program is; that file need not exist. None when the dictionary
    /// names no program.
    [[nodiscard]] std::optional<std::string> executablePath() const;

private:
    std::filesystem::path path_;
    std::shared_ptr<void> information_; ///< The library's dictionary; null where there is none.
    std::optional<std::string> infoError_;
};

} // namespace quorvale::platform::bundle
