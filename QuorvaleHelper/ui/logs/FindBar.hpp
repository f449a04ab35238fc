#pragma once

#include "ui/logs/TextSearch.hpp"

#include <QWidget>

#include <cstddef>
#include <string>

class QCheckBox;
class QLabel;
class QLineEdit;
class QToolButton;

namespace quorvale::ui::logs {

/// Where a person says what to look for. Return goes to the next match, with Shift to the previous one; Escape closes
/// the bar.
class FindBar final : public QWidget {
    Q_OBJECT

public:
    FindBar();

    /// UTF-8.
    [[nodiscard]] std::string text() const;
    [[nodiscard]] TextSearch::Case letters() const;

    /// Gets the keyboard, with `text` in place of what it held unless that is empty.
    void ask(const QString& text);

    /// Which match is shown, counted from 1, of how many.
    void showCount(std::size_t number, std::size_t count);

Q_SIGNALS:
    /// What is looked for is another text, or with other letters.
    void wantedChanged();
    void nextWanted();
    void previousWanted();
    void closed();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QLineEdit* field_;
    QLabel* count_;
    QToolButton* previous_;
    QToolButton* next_;
    QCheckBox* matchesCase_;
};

} // namespace quorvale::ui::logs
