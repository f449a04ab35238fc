#include "ui/logs/LogViewer.hpp"

#include "support/RecordedLog.hpp"
#include "support/waitUntil.hpp"
#include "ui/logs/EntryView.hpp"
#include "ui/logs/FindBar.hpp"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>

namespace quorvale::ui::logs {

namespace {

using platform::log::Entry;

/// A log whose messages are given by the test.
class GivenLog final : public LogReader {
public:
    std::expected<void, LogError> open() override {
        ++reads;
        return fails ? std::unexpected(LogError{"locked"}) : std::expected<void, LogError>();
    }

    std::expected<Entries, LogError> entries(std::chrono::duration<double> /*sinceLatestBoot*/) override {
        return Entries{.count = messages.size(), .messageBytes = 0, .walk = [this](const auto& visit) {
                           for (const auto& message : messages) {
                               visit(Entry{{}, platform::log::Level::info, identity, message});
                           }
                       }};
    }

    platform::log::Identity identity{"own", "default"};
    std::vector<std::string> messages{"first", "second"};
    bool fails = false;
    int reads = 0;
};

class LogViewerTest : public testing::Test {
protected:
    [[nodiscard]] EntryView& list() const { return *viewer.findChild<EntryView*>(); }

    [[nodiscard]] QPushButton& done() const { return *viewer.findChild<QPushButton*>(); }

    /// The list's text, the dates left out.
    [[nodiscard]] std::string text() const {
        auto text = *list().items().front();
        for (auto date = text.find("[0"); date != std::string::npos; date = text.find("[0")) {
            text.erase(date, text.find("] ", date) + 2 - date);
        }
        return text;
    }

    tests::RecordedLog log;
    GivenLog* given = new GivenLog;
    LogStore logs{{.subsystems = {"own", "", ""},
                   .logger = log.logger(),
                   .reader = std::unique_ptr<LogReader>(given),
                   .displayDate = [] { return DisplayDate(QLocale(QStringLiteral("de_DE")), QTimeZone::utc()); }}};
    platform::queue::MainQueue mainQueue;
    int dismissals = 0;
    LogViewer viewer{logs, mainQueue, [this] { ++dismissals; }};
};

} // namespace

TEST_F(LogViewerTest, ReadsTheLogAtEachShowingAndNotWhileItIsOpen) {
    EXPECT_EQ(given->reads, 0);
    viewer.show();
    EXPECT_EQ(text(), "") << "what is there is shown at once";
    EXPECT_TRUE(tests::waitUntil([&] { return text() == "[default] first\n[default] second"; }));
    given->messages.emplace_back("third");
    QTest::mouseClick(&list(), Qt::LeftButton);
    viewer.resize(900, 700);

    viewer.hide();
    viewer.show();
    EXPECT_EQ(text(), "[default] first\n[default] second");
    EXPECT_TRUE(tests::waitUntil([&] { return text() == "[default] first\n[default] second\n[default] third"; }));
    EXPECT_EQ(given->reads, 2);

    given->fails = true;
    viewer.hide();
    viewer.show();
    EXPECT_TRUE(tests::waitUntil([&] { return log.count("error: locked") == 1; }));
    EXPECT_EQ(text(), "[default] first\n[default] second\n[default] third") << "stays when the log can't be read";

    viewer.hide();
    viewer.show();
    viewer.hide();
    bool later = false;
    mainQueue.async([&] { later = true; });
    EXPECT_TRUE(tests::waitUntil([&] { return later; }));
    EXPECT_EQ(given->reads, 3) << "not for a window that is gone";
}

TEST_F(LogViewerTest, KeepsTheListAndDoneInsideThePaddingAtEverySize) {
    EXPECT_EQ(viewer.minimumSize(), QSize(500, 350));
    for (const auto size : {QSize(500, 350), QSize(720, 480), QSize(1600, 1200)}) {
        viewer.resize(size);
        viewer.show();
        const auto inside = QRect(QPoint(), size).adjusted(20, 20, -20, -20);
        EXPECT_EQ(done().geometry().bottomRight(), inside.bottomRight());
        EXPECT_EQ(done().width(), 80);
        EXPECT_EQ(list().geometry().topLeft(), inside.topLeft());
        EXPECT_EQ(list().geometry().right(), inside.right());
        EXPECT_EQ(done().geometry().top() - list().geometry().bottom() - 1, 20);
        viewer.setLayoutDirection(Qt::RightToLeft);
        viewer.layout()->activate();
        EXPECT_EQ(done().geometry().bottomLeft(), inside.bottomLeft());
        viewer.setLayoutDirection(Qt::LeftToRight);
    }
    EXPECT_EQ(done().text(), QStringLiteral("Done"));
    QTest::mouseClick(&done(), Qt::LeftButton);
    EXPECT_EQ(dismissals, 1);
    QTest::keyClick(&list(), Qt::Key_Return);
    EXPECT_EQ(dismissals, 1) << "the button doesn't have the focus";
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        QTest::keyClick(&done(), key);
    }
    EXPECT_EQ(dismissals, 4);

    auto font = QApplication::font();
    font.setPixelSize(60);
    QApplication::setFont(font, "QPushButton");
    const LogViewer large(logs, mainQueue, [] {});
    EXPECT_GT(large.findChild<QPushButton*>()->width(), QFontMetrics(font).horizontalAdvance(QStringLiteral("Done")));
    QApplication::setFont({}, "QPushButton");
}

TEST_F(LogViewerTest, FindsTextsInABarThatComesAndGoes) {
    given->messages = {"Agent one", "none", "agent two"};
    viewer.show();
    ASSERT_TRUE(tests::waitUntil([&] { return text().ends_with("agent two"); }));
    auto& bar = *viewer.findChild<FindBar*>();
    const auto listHeight = list().height();
    EXPECT_FALSE(bar.isVisible());
    const auto& count = *bar.findChild<QLabel*>();
    const auto line = [&] {
        const auto& segments = list().segments();
        return std::pair(segments.at(list().selection().begin()), std::string(list().selection().text()));
    };
    using Line = std::pair<std::size_t, std::string>;
    viewer.activateWindow();
    QTest::keySequence(&list(), QKeySequence::Find);
    ASSERT_TRUE(bar.isVisible());
    auto& field = *bar.findChild<QLineEdit*>();
    EXPECT_TRUE(field.hasFocus());
    QTest::keyClicks(&field, QStringLiteral("agent"));
    EXPECT_EQ(line(), Line(0, "Agent"));
    EXPECT_EQ(count.text(), QStringLiteral("1 of 2"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(line(), Line(2, "agent"));
    EXPECT_EQ(count.text(), QStringLiteral("2 of 2"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(line(), Line(0, "Agent")) << "around the end";
    EXPECT_EQ(count.text(), QStringLiteral("1 of 2"));
    QTest::keyClick(&field, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(line(), Line(2, "agent"));
    EXPECT_EQ(count.text(), QStringLiteral("2 of 2"));
    bar.findChild<QCheckBox*>()->setChecked(true);
    EXPECT_EQ(count.text(), QStringLiteral("1 of 1"));
    QTest::keyClicks(&field, QStringLiteral("s"));
    EXPECT_EQ(count.text(), QStringLiteral("No Matches"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(line(), Line(2, "agent")) << "nothing is found, nothing else is shown";
    EXPECT_EQ(field.text(), QStringLiteral("agents"));

    QTest::keyClick(&field, Qt::Key_Escape);
    EXPECT_FALSE(bar.isVisible());
    EXPECT_TRUE(list().hasFocus());
    viewer.layout()->activate();
    EXPECT_EQ(list().height(), listHeight);
    QTest::keySequence(&list(), QKeySequence::Find);
    EXPECT_EQ(field.text(), QStringLiteral("agent")) << "what is selected is looked for";
}

TEST_F(LogViewerTest, SavesWhatIsShownWholeOrNotAtAll) {
    const QTemporaryDir folder;
    const auto path = folder.filePath(QStringLiteral("-$HOME \"${x}\" %n.log"));
    const auto contents = [](const QString& name) {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "nothing";
    };
    const auto failures = [&] {
        return std::ranges::count_if(
            log.lines(), [](const std::string& line) { return line.starts_with("error: Failed to save the log: "); });
    };
    const auto saveTo = [&](const QString& name) {
        viewer.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&viewer));
        QTest::keySequence(&viewer, QKeySequence::Save);
        auto* const dialog = viewer.findChild<QFileDialog*>();
        ASSERT_NE(dialog, nullptr);
        Q_EMIT dialog->fileSelected(name);
        delete dialog;
    };
    viewer.show();
    viewer.activateWindow();
    QTest::keySequence(&viewer, QKeySequence::Save);
    EXPECT_EQ(viewer.findChild<QFileDialog*>(), nullptr) << "there is nothing to save";
    given->messages = {"a\xff\xc2\xad", std::string(1 << 20, 'x')};
    viewer.hide();
    viewer.show();
    ASSERT_TRUE(tests::waitUntil([&] { return text().ends_with('x'); }));
    const auto expected = *list().items().front() + "\n";
    saveTo(path);
    EXPECT_TRUE(tests::waitUntil([&] { return contents(path) == expected; }));
    EXPECT_EQ(QFile::permissions(path) & QFile::ReadOther, QFile::Permissions());

    const auto link = folder.filePath(QStringLiteral("link"));
    const auto other = folder.filePath(QStringLiteral("other"));
    ASSERT_TRUE(QFile(other).open(QIODevice::WriteOnly) && QFile::link(other, link));
    saveTo(link);
    EXPECT_TRUE(tests::waitUntil([&] { return contents(other) == expected; }));
    EXPECT_TRUE(QFileInfo(link).isSymLink());

    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("taken")));
    for (const auto* name : {"taken", "no/where"}) {
        const auto before = failures();
        saveTo(folder.filePath(QString::fromLatin1(name)));
        EXPECT_TRUE(tests::waitUntil([&] { return failures() == before + 1; }));
        auto* const message = viewer.findChild<QMessageBox*>();
        ASSERT_NE(message, nullptr);
        EXPECT_EQ(message->textFormat(), Qt::PlainText);
        delete message;
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 4);
}

} // namespace quorvale::ui::logs
