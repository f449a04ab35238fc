#pragma once

#include <QPushButton>

namespace quorvale::ui::logs {

/// The toolkit's standard button with a ring around it while the keyboard is at it: styles show that with a colour of
/// the palette's that is hardly seen in some. Return presses it as the space bar does.
class DoneButton final : public QPushButton {
    Q_OBJECT

public:
    explicit DoneButton(const QString& label);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quorvale::ui::logs
