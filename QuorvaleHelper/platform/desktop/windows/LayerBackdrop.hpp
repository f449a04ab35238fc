#pragma once

#include <QObject>
#include <QWindow>

#include <memory>
#include <vector>

namespace quorvale::platform::desktop {

/// What nobody sees between the windows and a window of ours that stands on a layer, on all screens but for their
/// panels: a click on the bare desktop or on another program's window takes the focus from nobody, and would be told to
/// nobody else. Its surfaces are there while it is up only. GUI thread.
class LayerBackdrop final : public QObject {
    Q_OBJECT

public:
    /// Below what is put on the layer from now on.
    void raise();
    void remove();

Q_SIGNALS:
    void pressed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::vector<std::unique_ptr<QWindow>> surfaces_;
};

} // namespace quorvale::platform::desktop
