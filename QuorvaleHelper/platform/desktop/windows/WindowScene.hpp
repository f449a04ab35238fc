#pragma once

#include <QObject>
#include <QPointer>
#include <QSize>
#include <QString>

#include <functional>

class QWidget;

namespace quorvale::platform::desktop {

/// A window of the program's that is there once or not at all. It is made when it is opened and gives its memory back
/// when it closes; its content limits its size. GUI thread.
class WindowScene final : public QObject {
    Q_OBJECT

public:
    struct Description {
        QString title;
        QSize initialSize; ///< when it is first opened
        /// Makes what the window shows, which becomes the window's.
        std::function<QWidget*()> makeContent;
    };

    explicit WindowScene(Description description, QObject* parent = nullptr);
    ~WindowScene() override;
    WindowScene(const WindowScene&) = delete;
    WindowScene& operator=(const WindowScene&) = delete;

    [[nodiscard]] const QString& title() const { return description_.title; }

    /// Shows the window, as large as it was last, or brings the one that is there to the front.
    void open();

    /// Closes the window, as its title bar, Escape and the desktop's key for it do.
    void dismiss();

private:
    class Window;

    Description description_;
    QSize size_;              ///< that the window had when it closed, or will have first
    QPointer<Window> window_; ///< none, or one that isn't closed
};

} // namespace quorvale::platform::desktop
