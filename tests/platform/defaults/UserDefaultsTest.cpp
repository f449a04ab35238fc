#include "platform/defaults/UserDefaults.hpp"

#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sys/resource.h>
#include <thread>
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
    UserDefaultsTest() { qputenv("XDG_CONFIG_HOME", folder_.path().toUtf8()); }

    ~UserDefaultsTest() override { qunsetenv("XDG_CONFIG_HOME"); }

    static UserDefaults suite(std::string_view name = "group.suite-1") { return UserDefaults(name); }

    [[nodiscard]] fs::path file() const { return fs::path(folder_.path().toStdString()) / "group.suite-1/Defaults"; }

private:
    QTemporaryDir folder_;
};

TEST_F(UserDefaultsTest, KeepsEveryTypeOfValueExactly) {
    const Value values{Array{
        {std::string()},
        {"Zürich \U0001F1E8\U0001F1ED \0 end"s},
        {"\uFEFF@Invalid()"s},
        {std::numeric_limits<std::int64_t>::min()},
        {std::numeric_limits<std::int64_t>::max()},
        {0.1},
        {7.0},
        {-std::numeric_limits<double>::infinity()},
        {true},
        {false},
        {std::vector<std::byte>{std::byte{0}, std::byte{0xFF}}},
        {Date{-0.001}},
        {Date{1700000000.123}},
        {Array{{true}, {std::string("x")}, {Array{}}}},
        {Dictionary{{"", {std::int64_t{0}}}, {"\uFEFFinner", {Dictionary{{"list", {Array{{1.5}}}}}}}}},
    }};
    for (const auto* key : {"values", "\uFEFFvalues", "General", "ключ = [x]; %"}) {
        ASSERT_TRUE(suite().setValue(key, values));
        EXPECT_EQ(suite().value(key), values) << key;
    }
    for (const auto& value : std::get<Array>(values.value)) {
        ASSERT_TRUE(suite().setValue("value", value));
        EXPECT_EQ(suite().value("value"), value) << value.value.index();
    }
}

TEST_F(UserDefaultsTest, HasWhatWasWrittenLastBySuiteAndKey) {
    auto defaults = suite();
    EXPECT_EQ(defaults.value("key"), std::nullopt);
    EXPECT_FALSE(fs::exists(file().parent_path()));
    ASSERT_TRUE(defaults.setValue("key", Value{true}));
    ASSERT_TRUE(defaults.setValue("other", Value{false}));
    ASSERT_TRUE(suite("another").setValue("key", Value{std::int64_t{5}}));
    EXPECT_EQ(defaults.value("key"), Value{true});
    ASSERT_TRUE(suite().setValue("key", Value{1.5}));
    EXPECT_EQ(defaults.value("key"), Value{1.5});
    ASSERT_TRUE(defaults.setValue("key", std::nullopt));
    EXPECT_EQ(defaults.value("key"), std::nullopt);
    EXPECT_EQ(defaults.value("other"), Value{false});
    EXPECT_EQ(fs::status(file().parent_path()).permissions(), fs::perms::owner_all);
}

TEST_F(UserDefaultsTest, TakesABrokenFileForAnEmptyOneAndFailsWhereThereIsNone) {
    ASSERT_TRUE(suite().setValue("key", Value{"value"s}));
    for (const auto size : {1U, 5U, 20U}) {
        fs::resize_file(file(), fs::file_size(file()) - size);
        EXPECT_EQ(suite().value("key"), std::nullopt) << size;
        ASSERT_TRUE(suite().setValue("key", Value{"value"s}));
        EXPECT_EQ(suite().value("key"), Value{"value"s});
    }
    fs::remove(file());
    fs::create_directory(file());
    EXPECT_FALSE(suite().value("key"));
    EXPECT_FALSE(suite().setValue("key", Value{false}));
}

TEST_F(UserDefaultsTest, LeavesTheFileAsItWasWhenTheDiskIsFull) {
    ASSERT_TRUE(suite().setValue("key", Value{true}));
    const auto contents = [this] {
        std::ifstream stream(file(), std::ios::binary);
        return std::string{std::istreambuf_iterator<char>(stream), {}};
    };
    const auto before = contents();
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{.rlim_cur = 4096, .rlim_max = limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    for (const auto size : {4'000U, 100'000U}) {
        EXPECT_FALSE(suite().setValue("key", Value{std::string(size, 'x')})) << size;
        EXPECT_EQ(contents(), before);
    }
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, handler);
    EXPECT_TRUE(suite().setValue("key", Value{false}));
    EXPECT_EQ(suite().value("key"), Value{false});
}

TEST_F(UserDefaultsTest, KeepsTheKeysOfWritersAtTheSameTime) {
    const auto write = [](int first) {
        for (int key = first; key < first + 10; ++key) {
            EXPECT_TRUE(suite().setValue(std::to_string(key), Value{std::int64_t{key}}));
        }
    };
    {
        const std::jthread one(write, 0);
        const std::jthread two(write, 10);
        write(20);
    }
    for (int key = 0; key < 30; ++key) {
        EXPECT_EQ(suite().value(std::to_string(key)), Value{std::int64_t{key}});
    }
}

} // namespace quorvale::platform::defaults
