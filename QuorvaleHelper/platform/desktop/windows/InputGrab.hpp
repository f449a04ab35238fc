#pragma once

#include <QAbstractNativeEventFilter>
#include <QBasicTimer>
#include <QObject>
#include <QPoint>

class QWidget;

namespace quorvale::platform::desktop {

/// Pointer and keyboard of an X11 desktop for one window of the program's, as an open menu has them, so that a click
/// anywhere else only asks for the end of it. Each of the two is taken as soon as it can be had, and is not let go of
/// in between: a panel that opens the window on the press of a button holds the pointer until the button is up again,
/// and the server tells of that. Elsewhere than on X11 they are taken as Qt takes them. GUI thread.
class InputGrab final : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    /// `window` is a window of its own, and outlives this.
    explicit InputGrab(QWidget& window);
    ~InputGrab() override;
    InputGrab(const InputGrab&) = delete;
    InputGrab& operator=(const InputGrab&) = delete;

    /// The window is on screen, and stays there until the release. Waits for the server's answers.
    void take();

    [[nodiscard]] bool hasKeyboard() const { return hasKeyboard_; }

    void release();

Q_SIGNALS:
    /// The user has clicked elsewhere, and nobody else was told. It comes when the button is up again: a panel that saw
    /// it go up over its icon would take that for a click.
    void clickedElsewhere();
    /// The user has pressed a button at `place`, in logical pixels of the whole desktop, before the pointer could be
    /// had: whatever is there, perhaps the window, was told.
    void pressedTooEarly(QPoint place);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    void tryToTake();
    [[nodiscard]] bool takeKeyboard();
    [[nodiscard]] bool takePointer();
    void listen(bool isListening);

    QWidget& window_;
    QBasicTimer retries_;
    bool hasKeyboard_ = false;
    bool hasPointer_ = false;
    bool pressedElsewhere_ = false;
};

} // namespace quorvale::platform::desktop
