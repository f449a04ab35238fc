#include "platform/defaults/UserDefaults.hpp"

#include "platform/defaults/Coding.hpp"

#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace quorvale::platform::defaults {

namespace fs = std::filesystem;

namespace {

constexpr const char* fileName = "Defaults.cbor";
constexpr const char* newFileName = "Defaults.cbor.new";

bool isSuiteName(std::string_view name) {
    constexpr std::string_view allowed = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.-_";
    return !name.empty() && name.size() <= 128 && name.front() != '.' &&
           name.find_first_not_of(allowed) == std::string_view::npos;
}

class File {
public:
    explicit File(int descriptor) : descriptor_(descriptor) {}

    ~File() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }

    File(const File&) = delete;
    File& operator=(const File&) = delete;

    explicit operator bool() const { return descriptor_ >= 0; }

    [[nodiscard]] int descriptor() const { return descriptor_; }

    /// False, with `errno`, where not all of it could be written.
    [[nodiscard]] bool write(std::string_view bytes) const {
        while (!bytes.empty()) {
            const auto written = ::write(descriptor_, bytes.data(), bytes.size());
            if (written < 0 && errno != EINTR) {
                return false;
            }
            bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
        }
        return true;
    }

    /// Up to `limit` bytes from the beginning; none, with `errno`, where it can't be read.
    [[nodiscard]] std::optional<std::string> read(std::size_t limit) const {
        std::string bytes(limit, '\0');
        std::size_t size = 0;
        while (size < limit) {
            const auto got = ::read(descriptor_, bytes.data() + size, limit - size);
            if (got < 0 && errno != EINTR) {
                return std::nullopt;
            }
            if (got == 0) {
                break;
            }
            size += static_cast<std::size_t>(std::max<ssize_t>(got, 0));
        }
        bytes.resize(size);
        return bytes;
    }

private:
    int descriptor_;
};

std::unexpected<std::string> failure(const fs::path& file) {
    return std::unexpected(file.string() + ": " + std::system_category().message(errno));
}

/// The entries of the suite in `folder`; none where it was never written to.
std::expected<Entries, std::string> read(const fs::path& folder) {
    const auto path = folder / fileName;
    // Opening a pipe would wait for a writer.
    const File file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file) {
        if (errno == ENOENT) {
            return Entries();
        }
        return failure(path);
    }
    struct stat status{};
    if (fstat(file.descriptor(), &status) != 0) {
        return failure(path);
    }
    if (!S_ISREG(status.st_mode) || status.st_size > static_cast<off_t>(largestSuite)) {
        return std::unexpected(path.string() + ": no file, or too large a one");
    }
    const auto bytes = file.read(static_cast<std::size_t>(status.st_size));
    if (!bytes) {
        return failure(path);
    }
    auto entries = decode(*bytes);
    if (!entries) {
        return std::unexpected(path.string() + ": not a suite's map of values");
    }
    return *std::move(entries);
}

/// Puts a file of these bytes into the place of the suite's file. The order makes it durable: contents, name, folder.
std::expected<void, std::string> replace(const fs::path& folder, const File& directory, std::string_view bytes) {
    const auto newPath = folder / newFileName;
    // A writer that crashed may have left one.
    unlinkat(directory.descriptor(), newFileName, 0);
    const File file(openat(directory.descriptor(), newFileName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file) {
        return failure(newPath);
    }
    if (!file.write(bytes) || fsync(file.descriptor()) != 0 ||
        renameat(directory.descriptor(), newFileName, directory.descriptor(), fileName) != 0) {
        const auto error = failure(newPath);
        unlinkat(directory.descriptor(), newFileName, 0);
        return error;
    }
    if (fsync(directory.descriptor()) != 0) {
        return failure(folder);
    }
    return {};
}

/// Makes the suite's folder, durably, where it isn't there.
std::expected<void, std::string> make(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder.parent_path(), error);
    if (mkdir(folder.c_str(), 0700) != 0) {
        return errno == EEXIST ? std::expected<void, std::string>() : failure(folder);
    }
    const File parent(open(folder.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!parent || fsync(parent.descriptor()) != 0) {
        return failure(folder.parent_path());
    }
    return {};
}

} // namespace

std::expected<std::shared_ptr<UserDefaults>, std::string> UserDefaults::open(std::string_view suiteName,
                                                                             const fs::path& folder) {
    if (!isSuiteName(suiteName)) {
        return std::unexpected("not the name of a suite");
    }
    return std::shared_ptr<UserDefaults>(new UserDefaults(folder / suiteName));
}

fs::path UserDefaults::userFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation).toStdString();
}

std::expected<std::optional<UserDefaults::Value>, std::string> UserDefaults::value(std::string_view key) const {
    auto entries = read(folder_);
    if (!entries) {
        return std::unexpected(std::move(entries.error()));
    }
    const auto entry = entries->find(std::string(key));
    return entry == entries->end() ? std::nullopt : std::optional(std::move(entry->second));
}

std::expected<void, std::string> UserDefaults::setValue(std::string_view key, const std::optional<Value>& value) {
    if (auto made = make(folder_); !made) {
        return made;
    }
    const File directory(::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!directory) {
        return failure(folder_);
    }
    // Held until the folder is closed.
    while (flock(directory.descriptor(), LOCK_EX) != 0) {
        if (errno != EINTR) {
            return failure(folder_);
        }
    }
    auto entries = read(folder_);
    if (!entries) {
        return std::unexpected(std::move(entries.error()));
    }
    if (value) {
        entries->insert_or_assign(std::string(key), *value);
    } else {
        entries->erase(std::string(key));
    }
    const auto bytes = encode(*entries);
    if (!bytes || bytes->size() > largestSuite) {
        return std::unexpected(folder_.string() + ": the value can't be kept");
    }
    return replace(folder_, directory, *bytes);
}

} // namespace quorvale::platform::defaults
