#include "platform/bundle/PropertyList.hpp"

#include <plist/plist.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <set>

namespace quorvale::platform::bundle {

namespace {

// The parser copies a text for each reference to it and recurses into nested objects: this much can neither fill
// the memory nor the stack.
constexpr std::size_t largestBinaryList = largestPropertyList / 4;

constexpr std::string_view binaryMagic = "bplist";

template <auto Free>
struct Freed {
    void operator()(auto* memory) const { Free(memory); }
};

using Node = std::unique_ptr<void, Freed<plist_free>>;
using Allocated = std::unique_ptr<void, Freed<std::free>>;
using AllocatedText = std::unique_ptr<char, Freed<std::free>>;

/// The big-endian number of `size` bytes at `offset`, none where that is not inside `data`.
std::optional<std::uint64_t> number(std::string_view data, std::uint64_t offset, std::size_t size) {
    if (size > sizeof(std::uint64_t) || offset > data.size() || size > data.size() - offset) {
        return std::nullopt;
    }
    std::uint64_t value = 0;
    for (const char byte : data.substr(offset, size)) {
        value = value << 8U | static_cast<unsigned char>(byte);
    }
    return value;
}

/// The objects of a binary property list (their layout is told in libplist's bplist.c).
class BinaryObjects {
public:
    static std::optional<BinaryObjects> of(std::string_view list) {
        constexpr std::size_t trailerSize = 32;
        if (list.size() < trailerSize) {
            return std::nullopt;
        }
        BinaryObjects objects(list);
        const auto trailer = list.substr(list.size() - trailerSize);
        const auto field = [&trailer](std::uint64_t offset, std::size_t size) {
            return number(trailer, offset, size).value_or(0);
        };
        objects.offsetSize_ = field(6, 1);
        objects.referenceSize_ = field(7, 1);
        objects.count_ = field(8, 8);
        objects.table_ = field(24, 8);
        if (objects.count_ > list.size() || objects.table_ > list.size()) {
            return std::nullopt;
        }
        return objects;
    }

    /// Whether no array, set or dictionary is referred to twice. The parser copies an object for each reference
    /// to it, so forty arrays that each hold the next one twice would fill any memory.
    [[nodiscard]] bool formTree() const {
        std::set<std::uint64_t> seen;
        std::uint64_t total = 0;
        for (std::uint64_t index = 0; index < count_; ++index) {
            const auto references = referencesOf(index);
            if (!references) {
                return false;
            }
            // Each reference has bytes of its own, unless objects overlap.
            total += references->count;
            if (total > list_.size()) {
                return false;
            }
            for (std::uint64_t i = 0; i < references->count; ++i) {
                const auto target = number(list_, references->offset + i * referenceSize_, referenceSize_);
                if (!target || *target >= count_) {
                    return false;
                }
                const auto inner = referencesOf(*target);
                if (!inner || (inner->count > 0 && !seen.insert(*target).second)) {
                    return false;
                }
            }
        }
        return true;
    }

    /// Whether no UTF-16 text has a zero in it, which the parser takes for a fault of its own and ends the process.
    [[nodiscard]] bool haveNoZeroInText() const {
        constexpr std::uint64_t utf16Text = 0x6;
        for (std::uint64_t index = 0; index < count_; ++index) {
            const auto object = objectOf(index);
            for (std::uint64_t i = 0; object && object->type == utf16Text && i < object->count; ++i) {
                if (number(list_, object->contents + 2 * i, 2).value_or(0) == 0) {
                    return false;
                }
            }
        }
        return true;
    }

private:
    struct Object {
        std::uint64_t type;
        std::uint64_t contents; ///< where they begin
        std::uint64_t count;    ///< of their parts; at most the size of the list
    };

    struct References {
        std::uint64_t offset;
        std::uint64_t count;
    };

    explicit BinaryObjects(std::string_view list) : list_(list) {}

    /// Nothing where the list is broken.
    [[nodiscard]] std::optional<Object> objectOf(std::uint64_t index) const {
        const auto offset = number(list_, table_ + index * offsetSize_, offsetSize_);
        const auto marker = offset ? number(list_, *offset, 1) : std::nullopt;
        if (!marker) {
            return std::nullopt;
        }
        Object object{.type = *marker >> 4U, .contents = *offset + 1, .count = *marker & 0xFU};
        if (object.count == 0xF) {
            // The count is an integer object: 0x1n and 2^n bytes.
            const auto size = number(list_, object.contents, 1);
            if (!size || *size >> 4U != 1 || (*size & 0xFU) > 3) {
                return std::nullopt;
            }
            const auto bytes = std::size_t{1} << (*size & 0xFU);
            const auto value = number(list_, object.contents + 1, bytes);
            if (!value || *value > list_.size()) {
                return std::nullopt;
            }
            object.count = *value;
            object.contents += 1 + bytes;
        }
        return object;
    }

    /// Where the references of an object stand, none of them for a scalar; nothing where the list is broken.
    [[nodiscard]] std::optional<References> referencesOf(std::uint64_t index) const {
        const auto object = objectOf(index);
        if (!object) {
            return std::nullopt;
        }
        const bool isDictionary = object->type == 0xD;
        if (object->type != 0xA && object->type != 0xC && !isDictionary) {
            return References{.offset = 0, .count = 0};
        }
        return References{.offset = object->contents, .count = isDictionary ? 2 * object->count : object->count};
    }

    std::string_view list_;
    std::uint64_t offsetSize_ = 0;
    std::uint64_t referenceSize_ = 0;
    std::uint64_t count_ = 0;
    std::uint64_t table_ = 0;
};

bool isSafeToParse(std::string_view contents) {
    if (!contents.starts_with(binaryMagic)) {
        return contents.size() <= largestPropertyList && !contents.contains('\0');
    }
    if (contents.size() > largestBinaryList) {
        return false;
    }
    const auto objects = BinaryObjects::of(contents);
    return objects && objects->formTree() && objects->haveNoZeroInText();
}

} // namespace

TextEntries textEntriesOfPropertyList(std::string_view contents) {
    TextEntries entries;
    if (!isSafeToParse(contents)) {
        return entries;
    }
    plist_t parsed = nullptr;
    // Newer libraries know more formats. Asked for one of these two, they don't guess.
    const auto parse = contents.starts_with(binaryMagic) ? plist_from_bin : plist_from_xml;
    parse(contents.data(), static_cast<std::uint32_t>(contents.size()), &parsed);
    const Node root(parsed);
    if (!root || plist_get_node_type(root.get()) != PLIST_DICT) {
        return entries;
    }
    plist_dict_iter position = nullptr;
    plist_dict_new_iter(root.get(), &position);
    const Allocated kept(position);
    while (true) {
        char* key = nullptr;
        plist_t value = nullptr;
        plist_dict_next_item(root.get(), position, &key, &value);
        const AllocatedText keyText(key);
        if (!value) {
            return entries;
        }
        if (!key || plist_get_node_type(value) != PLIST_STRING) {
            continue;
        }
        char* text = nullptr;
        plist_get_string_val(value, &text);
        if (const AllocatedText valueText(text); valueText) {
            entries.emplace(keyText.get(), valueText.get());
        }
    }
}

} // namespace quorvale::platform::bundle
