#include "ui/logs/EntryView.hpp"

#include "ui/logs/displayText.hpp"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>

namespace quorvale::ui::logs {

namespace {

constexpr int padding = 8;

EntryView::Items itemsOf(std::string text) {
    return {std::make_shared<const std::string>(std::move(text))};
}

/// As many of them as it takes to have `size` bytes.
std::string repeated(std::string_view text, std::size_t size) {
    std::string all;
    while (all.size() < size) {
        all += text;
    }
    return all;
}

std::string numbered(int lines) {
    std::string text;
    for (int line = 0; line < lines; ++line) {
        // Every seventh is long enough to wrap, so that heights differ.
        text += (line == 0 ? "" : "\n") + std::to_string(line) + (line % 7 == 0 ? std::string(300, 'm') : " short");
    }
    return text;
}

/// A view as it is on the screen.
std::unique_ptr<EntryView> shown(std::string text) {
    auto view = std::make_unique<EntryView>(itemsOf(std::move(text)));
    view->resize(400, 300);
    view->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(view.get()));
    QCoreApplication::sendPostedEvents();
    return view;
}

int topOf(EntryView& view, std::size_t segment) {
    return view.rectOf({segment, 0}).top();
}

int bottomOfLast(EntryView& view) {
    const auto last = view.segments().size() - 1;
    return view.rectOf({last, static_cast<int>(displayText(view.segments()[last]).size())}).bottom() + 1;
}

} // namespace

TEST(TextSegmentsTest, CutsLinesAndLongLinesWithoutLosingAByte) {
    constexpr auto longest = TextSegments::longest;
    const auto words = repeated("seven ch ", 3 * longest);
    for (const auto& [text, count] : std::initializer_list<std::pair<std::string, std::size_t>>{
             {"", 1},
             {"\n", 2},
             {"a\nb", 2},
             {"a\n\nb\n", 4},
             {std::string(longest, 'x'), 1},
             {std::string(longest, 'x') + "\n", 2},
             {std::string(longest + 1, 'x') + "\ny", 3},
             {words, 4},
             {std::string(1 << 20, '\xBF'), (1 << 20) / longest},
         }) {
        const TextSegments segments(text);
        EXPECT_EQ(segments.size(), count) << text.substr(0, 20);
        std::string joined;
        for (std::size_t i = 0; i < segments.size(); ++i) {
            EXPECT_LE(segments[i].size(), longest);
            EXPECT_EQ(segments.bytes(i), segments[i].size() + (segments.endsLine(i) ? 1 : 0));
            joined.append(segments[i]).append(segments.endsLine(i) ? "\n" : "");
        }
        EXPECT_EQ(joined, text);
    }
    EXPECT_EQ(TextSegments(words)[0].back(), ' ');
    const auto euros = 'x' + repeated("\u20AC", 3 * longest);
    EXPECT_EQ(TextSegments(euros)[1].substr(0, 3), "\u20AC") << "cut between characters";

    const auto cutAt = [](const std::string& character, std::size_t times) {
        const auto text = std::string(longest - 20, 'x') + repeated(character, times * character.size()) + "end";
        return TextSegments(text)[0].size() - (longest - 20);
    };
    EXPECT_EQ(cutAt("\U0001F469\u200D\U0001F4BB", 3), 11U) << "one person at a computer, not half of the second";
    EXPECT_EQ(cutAt("e\u0301", 10), 18U);
    EXPECT_EQ(cutAt("\u0628\u0627", 10), 20U) << "after an alef, which doesn't join the next letter";
    EXPECT_EQ(cutAt("\u0628\u0628\u0627", 10), 18U);
    EXPECT_EQ(cutAt("\u0628\u064E", 10), 0U) << "in front of a word that is all joined";
    const auto joined = repeated("\u0628", longest + 1);
    EXPECT_EQ(TextSegments(joined)[0].size(), longest) << "unless it is the whole line";
}

TEST(DisplayTextTest, HidesNothingAndMovesNothing) {
    for (const auto& [bytes, shown] : std::initializer_list<std::pair<std::string_view, QString>>{
             {"<b>bold</b> &amp;", QStringLiteral("<b>bold</b> &amp;")},
             {{"\0\x1B[31m\r\x7F\t|", 10}, QStringLiteral("\u2400\u241B[31m\u240D\u2421\t|")},
             {"a\u202Eb\u2066c\u200Fd\u061C", QStringLiteral("a\uFFFDb\uFFFDc\uFFFDd\uFFFD")},
             {"a\u2028b\u2029c\u0085d\uFFFC", QStringLiteral("a\uFFFDb\uFFFDc\uFFFDd\uFFFD")},
             {"\uFEFFa\u200Bb\U000E0041d", QStringLiteral("\uFFFDa\uFFFDb\uFFFDd")},
             {"co\u00ADop \U0001F3F4\U000E0067\U000E0062\U000E007F\U000E0062",
              QStringLiteral("co\u00ADop \U0001F3F4\U000E0067\U000E0062\U000E007F\uFFFD")},
             {"\u2764\uFE0F \u0646\u200C\u0647", QStringLiteral("\u2764\uFE0F \u0646\u200C\u0647")},
             {"\xFF\xC3(\xE2\x82", QStringLiteral("\uFFFD\uFFFD(\uFFFD")},
             {"Gr\u00FC\u00DFe \u05E9\u05DC\u05D5\u05DD \U0001F512", QStringLiteral("Grüße שלום 🔒")},
         }) {
        EXPECT_EQ(displayText(bytes), shown) << bytes;
    }
}

TEST(DisplayTextTest, TellsWhichBytesEachOfItsUnitsShows) {
    const std::string_view text("a\u20AC\U0001F512\U000E0041\xE2\x82|\xFF", 16);
    const std::pair<std::size_t, int> places[] = {{0, 0}, {1, 1}, {4, 2}, {8, 4}, {12, 5}, {14, 6}, {15, 7}, {16, 8}};
    EXPECT_EQ(displayText(text).size(), 8);
    for (const auto& [bytes, units] : places) {
        EXPECT_EQ(unitsShowing(text, bytes), units);
        EXPECT_EQ(bytesShownIn(text, units), bytes);
    }
    EXPECT_EQ(unitsShowing(text, 3), 1) << "of a part of a character, nothing is shown";
    EXPECT_EQ(bytesShownIn(text, 3), 4U) << "the half of a pair shows nothing";
    EXPECT_EQ(bytesShownIn(text, 100), text.size());
}

TEST(EntryViewTest, ReachesBothEndsExactlyAndMovesByPixelsBetween) {
    // Laid out whole, and with estimated heights.
    for (const int lines : {60, 20'000}) {
        const auto owner = shown(numbered(lines));
        auto& view = *owner;
        auto& bar = *view.verticalScrollBar();
        EXPECT_EQ(topOf(view, 0), padding);
        EXPECT_EQ(bar.value(), bar.minimum());

        QTest::keyClick(&view, Qt::Key_End);
        EXPECT_EQ(bottomOfLast(view), view.viewport()->height() - padding) << lines;
        EXPECT_EQ(bar.value(), bar.maximum());
        const auto atEnd = view.firstVisible();
        QTest::keyClick(&view, Qt::Key_Up);
        EXPECT_EQ(bottomOfLast(view), view.viewport()->height() - padding + bar.singleStep());

        QTest::keyClick(&view, Qt::Key_Home);
        QTest::keyClick(&view, Qt::Key_Down);
        EXPECT_EQ(topOf(view, 0), padding - bar.singleStep());

        // Pages overlap, leave nothing out, and come to the end.
        auto previous = view.firstVisible();
        for (int page = 0; bar.value() != bar.maximum() && page < lines; ++page) {
            const auto lastSeen = view.positionAt({0, view.viewport()->height() - padding}).segment;
            QTest::keyClick(&view, Qt::Key_PageDown);
            ASSERT_LE(view.firstVisible(), lastSeen);
            ASSERT_GE(view.firstVisible(), previous);
            previous = view.firstVisible();
        }
        EXPECT_EQ(view.firstVisible(), atEnd);

        // Dragged to the middle, the bar shows the middle, and stays there when the window's width changes.
        bar.setValue(bar.maximum() / 2);
        EXPECT_NEAR(static_cast<double>(view.firstVisible()), lines / 2.0, lines / 8.0);
        const auto middle = view.firstVisible();
        view.resize(250, 300);
        QCoreApplication::sendPostedEvents();
        EXPECT_EQ(view.firstVisible(), middle);
    }
}

TEST(EntryViewTest, LeavesNothingOutNearItsEndsHoweverWrongItsEstimates) {
    // Narrow letters are what is measured; most of the text is five times as wide.
    const auto narrow = repeated(std::string(300, 'i') + '\n', 90'000);
    const auto wide = repeated(std::string(300, 'W') + '\n', 90'000);
    const auto owner = shown(narrow.substr(0, 5000) + wide + narrow + wide);
    auto& view = *owner;
    const auto seenLast = [&] { return view.positionAt({0, view.viewport()->height() - padding}).segment; };
    for (const auto& [key, end] : {std::pair(Qt::Key_PageDown, view.segments().size() - 1), {Qt::Key_PageUp, 0UL}}) {
        for (int page = 0; page < 2000 && view.rectOf({end, 0}).isNull(); ++page) {
            const auto first = view.firstVisible();
            const auto last = seenLast();
            QTest::keyClick(&view, key);
            ASSERT_LE(view.firstVisible(), last);
            ASSERT_GE(seenLast(), first);
        }
        EXPECT_FALSE(view.rectOf({end, 0}).isNull());
    }
}

TEST(EntryViewTest, ShowsNoScrollBarForWhatFitsAndBeginsNewTextAtItsStart) {
    const auto owner = shown("one line");
    auto& view = *owner;
    EXPECT_FALSE(view.verticalScrollBar()->isVisible());
    view.setItems(itemsOf(numbered(1000)));
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.verticalScrollBar()->isVisible(); }));
    QTest::keyClick(&view, Qt::Key_End);
    view.setItems(itemsOf(numbered(2000)));
    EXPECT_EQ(topOf(view, 0), padding);
    view.setItems(itemsOf(""));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !view.verticalScrollBar()->isVisible(); }));
}

TEST(EntryViewTest, HasRoundCornersWithTheTextInside) {
    QPalette palette;
    palette.setColor(QPalette::Window, Qt::red);
    palette.setColor(QPalette::Base, Qt::blue);
    palette.setColor(QPalette::Text, Qt::green);
    const auto owner = shown(std::string(5000, 'W'));
    auto& view = *owner;
    view.setPalette(palette);
    const auto image = view.grab().toImage();
    for (const auto corner : {QPoint(0, 0), QPoint(399, 0), QPoint(0, 299), QPoint(399, 299)}) {
        EXPECT_EQ(image.pixelColor(corner), QColor(Qt::red)) << corner.x() << " " << corner.y();
        const auto inside = corner + QPoint(corner.x() == 0 ? 4 : -4, corner.y() == 0 ? 4 : -4);
        EXPECT_NE(image.pixelColor(inside), QColor(Qt::red));
    }
    EXPECT_EQ(image.pixelColor(4, 150), QColor(Qt::blue));
}

TEST(EntryViewTest, SelectsWithTheMouseByCharactersWordsAndLines) {
    const auto owner = shown("first words\nsecond \U0001F512 line\nthird");
    auto& view = *owner;
    auto& port = *view.viewport();
    const auto before = [&](std::size_t segment, int unit) {
        const auto rect = view.rectOf({segment, unit});
        return QPoint(rect.left() + 1, rect.center().y());
    };
    const auto selected = [&] { return std::string(view.selection().text()); };
    QTest::mousePress(&port, Qt::LeftButton, {}, before(0, 6));
    QTest::mouseMove(&port, before(1, 9));
    EXPECT_EQ(selected(), "words\nsecond \U0001F512");
    QTest::mouseMove(&port, before(0, 2));
    EXPECT_EQ(selected(), "rst ") << "and back over where it began";
    QTest::mouseRelease(&port, Qt::LeftButton, {}, before(0, 2));
    QTest::mouseClick(&port, Qt::LeftButton, Qt::ShiftModifier, before(1, 2));
    EXPECT_EQ(selected(), "words\nse");
    QTest::mouseClick(&port, Qt::LeftButton, {}, before(1, 0));
    EXPECT_EQ(selected(), "");

    QTest::mouseDClick(&port, Qt::LeftButton, {}, before(1, 2));
    EXPECT_EQ(selected(), "second");
    QTest::mousePress(&port, Qt::LeftButton, {}, before(1, 2));
    EXPECT_EQ(selected(), "second \U0001F512 line") << "the third click";
    QTest::mouseMove(&port, before(0, 3));
    EXPECT_EQ(selected(), "first words\nsecond \U0001F512 line") << "whole lines";
    QTest::mouseRelease(&port, Qt::LeftButton, {}, before(0, 3));
    view.setItems(itemsOf("other"));
    EXPECT_EQ(selected(), "");
}

TEST(EntryViewTest, SelectsWithTheKeyboardAndKeepsTheCaretInSight) {
    const auto owner = shown(numbered(2000));
    auto& view = *owner;
    const auto selected = [&] { return std::string(view.selection().text()); };
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ShiftModifier) {
        QTest::keyClick(&view, key, modifiers);
    };
    view.select(302, 302);
    press(Qt::Key_Right);
    EXPECT_EQ(selected(), "1");
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    EXPECT_EQ(selected(), "\n") << "backwards over the line's end";
    view.select(302, 302);
    press(Qt::Key_Right, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_EQ(selected(), "1 ");
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_EQ(selected(), "1 short\n2 short\n3 ") << "keeps its column";
    press(Qt::Key_End);
    EXPECT_EQ(selected(), "1 short\n2 short\n3 short");
    press(Qt::Key_Up);
    press(Qt::Key_Home);
    EXPECT_EQ(selected(), "1 short\n");
    for (int page = 0; page < 10; ++page) {
        press(Qt::Key_PageDown);
        EXPECT_FALSE(view.rectOf(view.positionOf(view.selection().caret())).isNull()) << page;
    }
    press(Qt::Key_End, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_EQ(view.selection().end(), view.segments().text().size());
    EXPECT_EQ(bottomOfLast(view), view.viewport()->height() - padding);
    press(Qt::Key_Home, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_EQ(topOf(view, 0), padding);
    EXPECT_EQ(view.selection().begin(), 0U);
    EXPECT_EQ(view.selection().end(), 302U);
}

TEST(EntryViewTest, CopiesWhatWasLoggedNotWhatIsShown) {
    const std::string text = "\x1B[31m <b>\u202E\n\u00E4\n";
    const auto owner = shown(text);
    auto& view = *owner;
    auto& clipboard = *QApplication::clipboard();
    clipboard.setText(QStringLiteral("before"));
    QTest::keySequence(&view, QKeySequence::Copy);
    EXPECT_EQ(clipboard.text(), QStringLiteral("before")) << "nothing is selected";
    QTest::keySequence(&view, QKeySequence::SelectAll);
    QTest::keySequence(&view, QKeySequence::Copy);
    EXPECT_EQ(clipboard.text().toStdString(), text);
}

TEST(EntryViewTest, PaintsWhatIsSelectedUpToTheListsEdgeOverALinesEnd) {
    QPalette palette;
    palette.setColor(QPalette::Highlight, Qt::red);
    const auto owner = shown("one\ntwo");
    auto& view = *owner;
    view.setPalette(palette);
    view.select(0, 5);
    const auto image = view.viewport()->grab().toImage();
    const auto first = view.rectOf({0, 0});
    const auto second = view.rectOf({1, 0});
    EXPECT_EQ(image.pixelColor(first.topLeft()), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(350, first.top()), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(second.topLeft()), QColor(Qt::red));
    EXPECT_NE(image.pixelColor(350, second.top()), QColor(Qt::red));
}

TEST(EntryViewTest, GivesScreenReadersTheRowAsText) {
    const std::string text = "first\nsecond \U0001F512 word\n\n" + std::string(3000, 'x') + "\nlast";
    const auto owner = shown(text);
    auto& view = *owner;
    auto* const list = QAccessible::queryAccessibleInterface(&view);
    EXPECT_EQ(list->role(), QAccessible::List);
    ASSERT_EQ(list->childCount(), 2);
    for (int index = 0; index < 2; ++index) {
        EXPECT_EQ(list->indexOfChild(list->child(index)), index);
        EXPECT_EQ(list->child(index)->parent(), list);
    }
    EXPECT_EQ(list->child(2), nullptr);
    EXPECT_EQ(list->child(1)->child(0)->role(), QAccessible::ScrollBar);
    auto& row = *list->child(0);
    EXPECT_EQ(row.role(), QAccessible::ListItem);
    EXPECT_EQ(list->childAt(row.rect().center().x(), row.rect().center().y()), &row);
    EXPECT_TRUE(row.text(QAccessible::Name).startsWith(QStringLiteral("first\nsecond")));
    auto& content = *row.textInterface();
    const auto whole = QString::fromStdString(text);
    EXPECT_EQ(content.characterCount(), whole.size());
    EXPECT_EQ(content.text(0, -1), whole);
    EXPECT_EQ(content.text(4, 9), whole.mid(4, 5));

    int start = 0;
    int end = 0;
    const auto offset = static_cast<int>(whole.indexOf(QStringLiteral("ord")));
    EXPECT_EQ(content.textAtOffset(offset, QAccessible::LineBoundary, &start, &end), whole.mid(6, 15));
    EXPECT_EQ(std::pair(start, end), std::pair(6, 21));
    EXPECT_EQ(content.textAtOffset(offset, QAccessible::WordBoundary, &start, &end), QStringLiteral("word"));
    EXPECT_EQ(content.textBeforeOffset(offset, QAccessible::LineBoundary, &start, &end), QStringLiteral("first\n"));
    EXPECT_EQ(content.textAfterOffset(offset, QAccessible::LineBoundary, &start, &end), QStringLiteral("\n"));
    EXPECT_EQ(content.offsetAtPoint(content.characterRect(offset).center()), offset);

    EXPECT_EQ(content.selectionCount(), 0);
    content.setSelection(0, 6, 18);
    content.selection(0, &start, &end);
    EXPECT_EQ(std::pair(start, end), std::pair(6, 18));
    EXPECT_EQ(content.cursorPosition(), 18);
    EXPECT_EQ(view.selection().text(), "second \U0001F512 wo");
    content.removeSelection(0);
    EXPECT_EQ(content.selectionCount(), 0);

    const auto last = static_cast<int>(whole.size()) - 2;
    view.resize(400, 100);
    EXPECT_TRUE(content.characterRect(last).isNull());
    content.scrollToSubstring(last, last + 1);
    EXPECT_FALSE(content.characterRect(last).isNull());
    for (const int wrong : {-1, 1'000'000}) {
        content.textAtOffset(wrong, QAccessible::CharBoundary, &start, &end);
        EXPECT_LE(end, whole.size());
    }
}

} // namespace quorvale::ui::logs
