#pragma once

#include <QQuickView>

#include <functional>

namespace murmeli {

class Language;

/// An ordinary window with one view in it. Closing hides it; whoever made it may keep it or drop it then.
/// Main thread only.
class AppWindow final : public QQuickView {
    Q_OBJECT

public:
    struct View {
        QString url;
        QVariantMap properties; ///< the view's required ones
        QString titleKey;
        bool titleStays = false; ///< in the language of the window's first moment
        QSize size;              ///< device-independent pixels
        QSize least = {};        ///< when smaller than `size`
        bool resizable = true;   ///< from `least` upwards
        bool escapeCloses = false;
        QString placeFile = {}; ///< where size and place are remembered, if they are
        std::function<void()> quit = {};
    };

    AppWindow(QQmlEngine& engine, const Language& language, const View& view);
    ~AppWindow() override;
    Q_DISABLE_COPY_MOVE(AppWindow)

    /// Shows the window, in the middle of the screen the first time, and brings it forward.
    void present();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void restorePlace();
    void rememberPlace() const;

    QString m_placeFile;
    std::function<void()> m_quit;
    bool m_escapeCloses;
    bool m_placed = false;
};

} // namespace murmeli
