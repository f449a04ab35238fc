#include "platform/bundle/PropertyList.hpp"

#include <QByteArray>
#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace quorvale::platform::bundle {

namespace {

using namespace std::string_view_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

std::string xml(const std::string& inside) {
    return std::string(R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">)").append(inside) + "</plist>";
}

std::string repeated(int count, const char* text) {
    return QByteArray(text).repeated(count).toStdString();
}

std::string bigEndian(std::uint64_t number, int size) {
    std::string bytes;
    for (int i = size - 1; i >= 0; --i) {
        bytes += static_cast<char>(number >> (8 * i));
    }
    return bytes;
}

/// A binary property list of these objects, the first of which is the root.
std::string binary(const std::vector<std::string>& objects) {
    std::string list = "bplist00";
    std::string table;
    for (const auto& object : objects) {
        table += bigEndian(list.size(), 2);
        list += object;
    }
    const auto tableOffset = list.size();
    return list + table + std::string(6, '\0') + "\x02\x02" + bigEndian(objects.size(), 8) + bigEndian(0, 8) +
           bigEndian(tableOffset, 8);
}

std::string object(unsigned char marker, const std::vector<std::size_t>& references) {
    std::string bytes(1, static_cast<char>(marker));
    for (const auto reference : references) {
        bytes += bigEndian(reference, 2);
    }
    return bytes;
}

std::string dictionary(const std::vector<std::size_t>& keysThenValues) {
    return object(static_cast<unsigned char>(0xD0 + keysThenValues.size() / 2), keysThenValues);
}

std::string array(const std::vector<std::size_t>& items) {
    return object(static_cast<unsigned char>(0xA0 + items.size()), items);
}

std::string text(const std::string& ascii) {
    return std::string(1, static_cast<char>(0x50 + ascii.size())).append(ascii);
}

std::string utf16Text(std::u16string_view units) {
    std::string bytes(1, static_cast<char>(0x60 + units.size()));
    for (const auto unit : units) {
        bytes += bigEndian(unit, 2);
    }
    return bytes;
}

} // namespace

TEST(PropertyListTest, GivesTheTextEntriesOfTheTopLevelDictionary) {
    const auto list = xml("<dict><key>name</key><string>Tom &amp; J\xC3\xA9r\xC3\xB4me</string>"
                          "<key>number</key><integer>57</integer><key>yes</key><true/><key>empty</key><string></string>"
                          "<key>inner</key><dict><key>deep</key><string>x</string></dict></dict>");

    EXPECT_THAT(textEntriesOfPropertyList(list),
                ElementsAre(Pair("empty", ""), Pair("name", "Tom & J\xC3\xA9r\xC3\xB4me")));
}

TEST(PropertyListTest, ReadsBinaryListsThatShareTexts) {
    const auto list =
        binary({dictionary({1, 2, 3, 3, 3, 4}), text("a"), utf16Text(u"\u00FC"sv), text("2.1"), array({3, 1})});

    EXPECT_THAT(textEntriesOfPropertyList(list), ElementsAre(Pair("a", "2.1"), Pair("\u00FC", "2.1")));
}

TEST(PropertyListTest, HasNoEntriesWhenBroken) {
    const auto good = binary({dictionary({1, 1}), text("a")});
    ASSERT_THAT(textEntriesOfPropertyList(good), ElementsAre(Pair("a", "a")));
    for (const auto& list : {
             std::string(),
             std::string("no property list"),
             xml(""),
             xml("<array><string>a</string></array>"),
             xml("<string>a</string>"),
             std::string("<plist><dict><key>a</key><string>b"),
             std::string("bplist00"),
             std::string("bplist00").append(32, '\xFF'),
             xml(std::string("<dict><key>a</key><string>b\0c</string></dict>", 43)),
             binary({dictionary({1, 2}), text("a"), utf16Text(u"b\0c"sv)}),
             binary({dictionary({1, 2}), utf16Text(u"\u00FC\0b"sv), text("c")}),
             binary({dictionary({1, 9}), text("a")}),
             binary({dictionary({1, 2}), text("a"), std::string("\xAF\x13") + std::string(8, '\x7F')}),
         }) {
        EXPECT_THAT(textEntriesOfPropertyList(list), IsEmpty()) << list;
    }
}

TEST(PropertyListTest, RefusesListsMadeToExhaustMemoryOrStack) {
    std::vector<std::string> doubling{dictionary({41, 1})};
    std::vector<std::string> nested{dictionary({2001, 1})};
    for (std::size_t i = 2; i <= 41; ++i) {
        doubling.push_back(array({i, i}));
    }
    doubling.emplace_back(text("a"));
    for (std::size_t i = 2; i <= 2001; ++i) {
        nested.push_back(array({i}));
    }
    nested.emplace_back(text("a"));
    const std::string entry = "<dict><key>a</key><string>b</string>";
    for (const auto& list : {
             binary(doubling),
             binary({dictionary({1, 2}), text("a"), array({2})}),
             xml(entry + std::string(largestPropertyList, ' ') + "</dict>"),
             xml(entry + "<key>c</key>" + repeated(6000, "<array>")),
         }) {
        EXPECT_THAT(textEntriesOfPropertyList(list), IsEmpty());
    }
    textEntriesOfPropertyList(binary(nested));
    EXPECT_THAT(textEntriesOfPropertyList(
                    xml(entry + "<key>c</key>" + repeated(3500, "<array>") + repeated(3500, "</array>") + "</dict>")),
                ElementsAre(Pair("a", "b")));
}

} // namespace quorvale::platform::bundle
