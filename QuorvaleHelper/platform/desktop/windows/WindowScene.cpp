#include "platform/desktop/windows/WindowScene.hpp"

#include "platform/desktop/windows/bringToFront.hpp"
#include "platform/desktop/windows/describeWindows.hpp"

#include <QShortcut>
#include <QVBoxLayout>
#include <QWidget>

#include <utility>

namespace quorvale::platform::desktop {

class WindowScene::Window final : public QWidget {
public:
    explicit Window(WindowScene& scene) : QWidget(nullptr, Qt::Window), scene_(scene) {
        setAttribute(Qt::WA_DeleteOnClose);
        setWindowTitle(scene.title());
        resize(scene.size_);
        // A layout without a constraint of its own follows the limits of what is in it.
        auto* const layout = new QVBoxLayout(this);
        layout->setContentsMargins({});
        layout->addWidget(scene.description_.makeContent());
        for (const auto key : {QKeySequence::Close, QKeySequence::Cancel}) {
            connect(new QShortcut(key, this), &QShortcut::activated, this, &QWidget::close);
        }
    }

protected:
    void closeEvent(QCloseEvent* event) override {
        if (!isMaximized() && !isFullScreen()) {
            scene_.size_ = size();
        }
        QWidget::closeEvent(event);
        // It is deleted later. Whoever opens the window until then wants one that stays.
        scene_.window_.clear();
    }

private:
    WindowScene& scene_;
};

WindowScene::WindowScene(Description description, QObject* parent)
    : QObject(parent), description_(std::move(description)), size_(description_.initialSize) {
    describeWindows();
}

WindowScene::~WindowScene() {
    delete window_;
}

void WindowScene::open() {
    if (!window_) {
        window_ = new Window(*this);
    }
    window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    bringToFront(*window_);
}

void WindowScene::dismiss() {
    if (window_) {
        window_->close();
    }
}

} // namespace quorvale::platform::desktop
