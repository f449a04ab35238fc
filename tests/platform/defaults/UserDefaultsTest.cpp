#include "platform/defaults/UserDefaults.hpp"

#include "support/blockUntil.hpp"

#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <csignal>
#include <fstream>
#include <limits>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <tuple>
#include <unistd.h>
#include <vector>

namespace quorvale::platform::defaults {

namespace fs = std::filesystem;
using namespace std::string_literals;
using connection::Date;
using connection::Dictionary;
using Value = UserDefaults::Value;
using Array = std::vector<Value>;

class UserDefaultsTest : public testing::Test {
protected:
    [[nodiscard]] std::shared_ptr<UserDefaults> open(std::string_view name = "group.suite-1") const {
        const auto suite = UserDefaults::open(name, folder());
        EXPECT_TRUE(suite) << name;
        return suite.value_or(nullptr);
    }

    [[nodiscard]] fs::path folder() const { return temporary_.path().toStdString(); }

    [[nodiscard]] fs::path file() const { return folder() / "group.suite-1" / "Defaults.cbor"; }

    void putFile(std::string_view contents) const {
        fs::create_directories(file().parent_path());
        std::ofstream(file(), std::ios::binary) << contents;
    }

    [[nodiscard]] std::string contents() const {
        std::ifstream stream(file(), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

private:
    QTemporaryDir temporary_;
};

TEST_F(UserDefaultsTest, KeepsEveryTypeOfValueExactly) {
    const Value values{Array{
        {std::string()},
        {"Zürich \U0001F1E8\U0001F1ED \0 end"s},
        {std::numeric_limits<std::int64_t>::min()},
        {std::numeric_limits<std::int64_t>::max()},
        {std::int64_t{-1}},
        {0.1},
        {7.0},
        {-std::numeric_limits<double>::infinity()},
        {true},
        {false},
        {std::vector<std::byte>{std::byte{0}, std::byte{0xFF}}},
        {Date{1700000000.123456789}},
        {Array{{true}, {std::string("x")}, {Array{}}}},
        {Dictionary{{"", {std::int64_t{0}}}, {"inner", {Dictionary{{"list", {Array{{1.5}}}}}}}}},
    }};
    ASSERT_TRUE(open()->setValue("values", values));
    EXPECT_EQ(open()->value("values"), values);
}

TEST_F(UserDefaultsTest, HasWhatWasWrittenLastBySuiteAndKey) {
    const auto suite = open();
    EXPECT_EQ(suite->value("key"), std::nullopt);
    EXPECT_FALSE(fs::exists(file()));
    ASSERT_TRUE(suite->setValue("key", Value{true}));
    ASSERT_TRUE(suite->setValue("other", Value{false}));
    ASSERT_TRUE(open("another")->setValue("key", Value{std::int64_t{5}}));
    EXPECT_EQ(suite->value("key"), Value{true});
    ASSERT_TRUE(open()->setValue("key", Value{1.5}));
    EXPECT_EQ(suite->value("key"), Value{1.5});
    ASSERT_TRUE(suite->setValue("key", std::nullopt));
    ASSERT_TRUE(suite->setValue("key", std::nullopt));
    EXPECT_EQ(suite->value("key"), std::nullopt);
    EXPECT_EQ(suite->value("other"), Value{false});
    EXPECT_EQ(fs::status(file()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(file().parent_path()).permissions(), fs::perms::owner_all);
}

TEST_F(UserDefaultsTest, TakesPlainNamesOnly) {
    using namespace std::string_view_literals;
    for (const auto name : {""sv, "."sv, ".."sv, ".hidden"sv, "a/b"sv, "../a"sv, "/a"sv, "a\0b"sv, "a b"sv, "ü"sv,
                            std::string_view("a\n")}) {
        EXPECT_FALSE(UserDefaults::open(name, folder())) << name;
    }
    EXPECT_FALSE(UserDefaults::open(std::string(129, 'x'), folder()));
    EXPECT_TRUE(UserDefaults::open("QVL7T4M2XK.com.quorvale_a-1", folder()));
}

TEST_F(UserDefaultsTest, LeavesAFileAsItIsThatItCannotRead) {
    for (const auto& broken : {
             ""s,
             "no CBOR"s,
             "\xA1\x61x"s,                                     // a map that ends early
             "\xA0\xA0"s,                                      // two maps
             "\xA1\x01\xF5"s,                                  // a key that is no text
             "\xA1\x61x\xF6"s,                                 // null
             "\xA1\x61x\xFA\x3F\x80\x00\x00"s,                 // a single-precision number
             "\xA1\x61x\xC0\x60"s,                             // a date as text
             "\xA1\x61x\x61\xFF"s,                             // ill-formed UTF-8
             "\xA1\x61x\x3B\x80\x00\x00\x00\x00\x00\x00\x00"s, // below 64 bits
             "\xA1\x61x\x5B\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s, // more bytes than there are
             "\xA1\x61x\x9A\xFF\xFF\xFF\xFF\x40\xFF"s,         // a break where the second of many items should be
             "\xA1\x61x"s + std::string(100'000, '\x81'),
         }) {
        putFile(broken);
        EXPECT_FALSE(open()->value("x")) << testing::PrintToString(broken.substr(0, 20));
        EXPECT_FALSE(open()->setValue("y", Value{true}));
        EXPECT_EQ(contents(), broken);
    }
    fs::remove(file());
    ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
    EXPECT_FALSE(open()->value("x"));
}

TEST_F(UserDefaultsTest, LeavesTheFileAsItWasWhenAWriteFails) {
    const auto suite = open();
    ASSERT_TRUE(suite->setValue("key", Value{true}));
    const auto before = contents();

    Value nested{true};
    for (int depth = 0; depth < 256; ++depth) {
        nested = {Array{nested}};
    }
    EXPECT_FALSE(suite->setValue("key", nested));
    EXPECT_FALSE(suite->setValue("key", Value{std::string("\xFF")}));
    EXPECT_FALSE(suite->setValue("\xC0\x80", Value{true}));
    EXPECT_FALSE(suite->setValue("key", Value{std::string(largestSuite, 'x')}));

    // A full disk, as far as this process can tell.
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{.rlim_cur = 4096, .rlim_max = limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_FALSE(suite->setValue("key", Value{std::string(10'000, 'x')}));
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, handler);

    EXPECT_EQ(contents(), before);
    EXPECT_EQ(std::distance(fs::directory_iterator(file().parent_path()), {}), 1);
}

TEST_F(UserDefaultsTest, KeepsTheKeysOfWritersAtTheSameTime) {
    const auto write = [this](int first) {
        for (int key = first; key < first + 10; ++key) {
            EXPECT_TRUE(open()->setValue(std::to_string(key), Value{std::int64_t{key}}));
        }
    };
    {
        const std::jthread one(write, 0);
        const std::jthread two(write, 10);
        const std::jthread three(write, 20);
        write(30);
    }
    for (int key = 0; key < 40; ++key) {
        EXPECT_EQ(open()->value(std::to_string(key)), Value{std::int64_t{key}});
    }
}

TEST_F(UserDefaultsTest, HasAWholeOldOrNewValueAfterACrashInTheMiddle) {
    const auto suite = open();
    const auto valueOf = [](char letter) { return Value{std::string(100'000, letter)}; };
    for (int crash = 0; crash < 20; ++crash) {
        ASSERT_TRUE(suite->setValue("key", valueOf('a')));
        const auto writer = fork();
        if (writer == 0) {
            alarm(20); // should the test end before
            for (char letter = 'b';; letter = letter == 'z' ? 'b' : static_cast<char>(letter + 1)) {
                std::ignore = suite->setValue("key", valueOf(letter));
            }
        }
        const bool isWritten = tests::blockUntil([&] { return suite->value("key") != valueOf('a'); });
        kill(writer, SIGKILL);
        ASSERT_EQ(waitpid(writer, nullptr, 0), writer);
        ASSERT_TRUE(isWritten);
        const auto value = suite->value("key").value_or(std::nullopt).value_or(Value{"-"s});
        EXPECT_EQ(value, valueOf(std::get<std::string>(value.value).front()));
    }
    ASSERT_TRUE(suite->setValue("key", Value{true}));
    EXPECT_EQ(suite->value("key"), Value{true});
}

} // namespace quorvale::platform::defaults
