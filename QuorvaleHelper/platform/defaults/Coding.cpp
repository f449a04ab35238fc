#include "platform/defaults/Coding.hpp"

#include <QCborStreamReader>
#include <QCborStreamWriter>

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace quorvale::platform::defaults {

namespace {

using connection::Date;
using connection::Dictionary;
using connection::PropertyList;

// Far more than a settings file has and far less than the stack bears.
constexpr int deepest = 256;

/// Writes one value; false where it has no form.
struct Writer {
    bool operator()(const std::string& text) const {
        const auto size = static_cast<qsizetype>(text.size());
        cbor.appendTextString(text.data(), size);
        return QUtf8StringView(text.data(), size).isValidUtf8();
    }

    bool operator()(std::int64_t number) const {
        cbor.append(static_cast<qint64>(number));
        return true;
    }

    bool operator()(double number) const {
        cbor.append(number);
        return true;
    }

    bool operator()(bool value) const {
        cbor.append(value);
        return true;
    }

    bool operator()(const std::vector<std::byte>& bytes) const {
        cbor.appendByteString(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
        return true;
    }

    bool operator()(Date date) const {
        cbor.append(QCborKnownTags::UnixTime_t);
        cbor.append(date.secondsSince1970);
        return true;
    }

    bool operator()(const std::vector<PropertyList>& items) const {
        cbor.startArray(items.size());
        return std::ranges::all_of(items, [this](const auto& item) { return inner(item); }) && cbor.endArray();
    }

    bool operator()(const Dictionary& dictionary) const {
        cbor.startMap(dictionary.size());
        return std::ranges::all_of(dictionary,
                                   [this](const auto& entry) { return (*this)(entry.first) && inner(entry.second); }) &&
               cbor.endMap();
    }

    [[nodiscard]] bool inner(const PropertyList& list) const {
        return depth < deepest && std::visit(Writer{cbor, depth + 1}, list.value);
    }

    QCborStreamWriter& cbor;
    int depth = 0;
};

/// Reads one value at a time; none where the bytes are broken or hold what `Writer` doesn't write.
class Reader {
public:
    explicit Reader(const QByteArray& bytes) : cbor_(bytes) {}

    std::optional<Dictionary> dictionary(int depth) {
        Dictionary entries;
        if (!cbor_.isMap() || !cbor_.enterContainer()) {
            return std::nullopt;
        }
        while (cbor_.hasNext()) {
            auto key = text();
            auto value = key ? list(depth) : std::nullopt;
            if (!value) {
                return std::nullopt;
            }
            entries.insert_or_assign(std::move(*key), std::move(*value));
        }
        return cbor_.leaveContainer() ? std::optional(std::move(entries)) : std::nullopt;
    }

    [[nodiscard]] qint64 offset() const { return cbor_.currentOffset(); }

private:
    std::optional<PropertyList> list(int depth) {
        if (depth == deepest) {
            return std::nullopt;
        }
        switch (cbor_.type()) {
        case QCborStreamReader::String:
            return asList(text());
        case QCborStreamReader::UnsignedInteger:
        case QCborStreamReader::NegativeInteger:
            return asList(integer());
        case QCborStreamReader::SimpleType:
            return asList(boolean());
        case QCborStreamReader::Double:
            return asList(number());
        case QCborStreamReader::ByteString:
            return asList(data());
        case QCborStreamReader::Tag:
            return asList(date());
        case QCborStreamReader::Array:
            return asList(items(depth + 1));
        case QCborStreamReader::Map:
            return asList(dictionary(depth + 1));
        default:
            return std::nullopt;
        }
    }

    template <typename Value>
    static std::optional<PropertyList> asList(std::optional<Value> value) {
        return value ? std::optional(PropertyList{std::move(*value)}) : std::nullopt;
    }

    template <typename Chunk>
    std::optional<Chunk> joined(QCborStreamReader::StringResult<Chunk> (QCborStreamReader::*readChunk)()) {
        Chunk whole;
        while (true) {
            const auto chunk = (cbor_.*readChunk)();
            // The end of a string is told as such also when what follows is broken; the reader then stays there.
            if (chunk.status == QCborStreamReader::Error || cbor_.lastError() != QCborError::NoError) {
                return std::nullopt;
            }
            if (chunk.status == QCborStreamReader::EndOfString) {
                return whole;
            }
            whole += chunk.data;
        }
    }

    std::optional<std::string> text() {
        const auto text = cbor_.isString() ? joined(&QCborStreamReader::readString) : std::nullopt;
        return text ? std::optional(text->toStdString()) : std::nullopt;
    }

    std::optional<std::vector<std::byte>> data() {
        const auto data = joined(&QCborStreamReader::readByteArray);
        if (!data) {
            return std::nullopt;
        }
        const auto* const begin = reinterpret_cast<const std::byte*>(data->data());
        return std::vector<std::byte>(begin, begin + data->size());
    }

    std::optional<std::int64_t> integer() {
        // The magnitude; of a negative number 0 stands for 2^64.
        const auto negative = cbor_.isNegativeInteger();
        const auto magnitude =
            negative ? static_cast<quint64>(cbor_.toNegativeInteger()) - 1 : cbor_.toUnsignedInteger();
        constexpr auto largest = std::numeric_limits<std::int64_t>::max();
        if (magnitude > static_cast<quint64>(largest) || !cbor_.next()) {
            return std::nullopt;
        }
        const auto value = static_cast<std::int64_t>(magnitude);
        return negative ? -value - 1 : value;
    }

    std::optional<bool> boolean() {
        if (!cbor_.isBool()) {
            return std::nullopt;
        }
        const auto value = cbor_.toBool();
        return cbor_.next() ? std::optional(value) : std::nullopt;
    }

    std::optional<double> number() {
        if (!cbor_.isDouble()) {
            return std::nullopt;
        }
        const auto value = cbor_.toDouble();
        return cbor_.next() ? std::optional(value) : std::nullopt;
    }

    std::optional<Date> date() {
        if (cbor_.toTag() != QCborTag(QCborKnownTags::UnixTime_t) || !cbor_.next()) {
            return std::nullopt;
        }
        const auto seconds = number();
        return seconds ? std::optional(Date{*seconds}) : std::nullopt;
    }

    std::optional<std::vector<PropertyList>> items(int depth) {
        std::vector<PropertyList> items;
        if (!cbor_.enterContainer()) {
            return std::nullopt;
        }
        while (cbor_.hasNext()) {
            auto item = list(depth);
            if (!item) {
                return std::nullopt;
            }
            items.push_back(std::move(*item));
        }
        return cbor_.leaveContainer() ? std::optional(std::move(items)) : std::nullopt;
    }

    QCborStreamReader cbor_;
};

} // namespace

std::optional<std::string> encode(const Entries& entries) {
    QByteArray bytes;
    QCborStreamWriter cbor(&bytes);
    return Writer{cbor}(entries) ? std::optional(bytes.toStdString()) : std::nullopt;
}

std::optional<Entries> decode(std::string_view bytes) {
    Reader reader(QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())));
    auto entries = reader.dictionary(0);
    return reader.offset() == static_cast<qint64>(bytes.size()) ? std::move(entries) : std::nullopt;
}

} // namespace quorvale::platform::defaults
