#pragma once

#include <QQuickView>

namespace murmeli {

class Language;

/// An ordinary window with one view in it. Closing hides it; it is the same window when shown again.
/// Main thread only.
class AppWindow final : public QQuickView {
    Q_OBJECT

public:
    struct View {
        QString url;
        QVariantMap properties; ///< the view's required ones
        QString titleKey;
        QSize size;            ///< device-independent pixels
        bool resizable = true; ///< from `size` upwards
    };

    AppWindow(QQmlEngine& engine, const Language& language, const View& view);

    /// Shows the window, in the middle of the screen the first time, and brings it forward.
    void present();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool m_placed = false;
};

} // namespace murmeli
