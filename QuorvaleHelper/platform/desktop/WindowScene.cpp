#include "platform/desktop/WindowScene.hpp"

#include <QShortcut>
#include <QVBoxLayout>
#include <QWidget>

#include <utility>

namespace quorvale::platform::desktop {

class WindowScene::Window final : public QWidget {
public:
    explicit Window(Description& description) : QWidget(nullptr, Qt::Window), description_(description) {
        setAttribute(Qt::WA_DeleteOnClose);
        setWindowTitle(description.title);
        resize(description.initialSize);
        // A layout without a constraint of its own follows the limits of what is in it.
        auto* const layout = new QVBoxLayout(this);
        layout->setContentsMargins({});
        layout->addWidget(description.makeContent());
        for (const auto key : {QKeySequence::Close, QKeySequence::Cancel}) {
            connect(new QShortcut(key, this), &QShortcut::activated, this, &QWidget::close);
        }
    }

protected:
    void closeEvent(QCloseEvent* event) override {
        if (!isMaximized() && !isFullScreen()) {
            description_.initialSize = size();
        }
        QWidget::closeEvent(event);
    }

private:
    Description& description_;
};

WindowScene::WindowScene(Description description, QObject* parent)
    : QObject(parent), description_(std::move(description)) {}

WindowScene::~WindowScene() {
    delete window_;
}

void WindowScene::open() {
    if (!window_) {
        window_ = new Window(description_);
    }
    window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    window_->show();
    window_->raise();
    window_->activateWindow();
}

void WindowScene::dismiss() {
    if (window_) {
        window_->close();
    }
}

} // namespace quorvale::platform::desktop
