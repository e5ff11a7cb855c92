#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

class QJSEngine;
class QQmlEngine;

namespace murmeli {

class Appearance;

/// What Theme needs to know of the desktop. Main thread only.
class Look final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool dark READ dark NOTIFY changed FINAL)
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY changed FINAL)
    Q_PROPERTY(bool highContrast READ highContrast NOTIFY changed FINAL)
    Q_PROPERTY(bool compositing READ compositing NOTIFY changed FINAL)
    Q_PROPERTY(bool typing READ typing NOTIFY typingChanged FINAL) ///< the pointer rests since a key
    Q_PROPERTY(QString family READ family CONSTANT FINAL)
    Q_PROPERTY(QString fixedFamily READ fixedFamily CONSTANT FINAL)  ///< all letters as wide
    Q_PROPERTY(double textScale READ textScale NOTIFY changed FINAL) ///< wished for, beside the screen's own
    Q_PROPERTY(double pointsPerPixel READ pointsPerPixel CONSTANT FINAL)

public:
    // No default for the parent: a singleton that can be made without arguments is made anew by every engine.
    explicit Look(QObject* parent);

    [[nodiscard]] bool dark() const { return m_dark; }
    [[nodiscard]] bool reducedMotion() const { return m_reducedMotion; }
    [[nodiscard]] bool highContrast() const { return m_highContrast; }
    [[nodiscard]] bool compositing() const { return m_compositing; }
    [[nodiscard]] double textScale() const { return m_textScale; }
    [[nodiscard]] bool typing() const { return m_typing; }

    /// Of the type that the views are drawn for, else the desktop's own.
    [[nodiscard]] static QString family();
    [[nodiscard]] static QString fixedFamily();

    /// For type sizes that are no whole number of device-independent pixels.
    [[nodiscard]] static double pointsPerPixel();

    void follow(const Appearance& appearance);
    void setDark(bool dark);
    void setReducedMotion(bool reduced);
    void setHighContrast(bool high);
    void setTextScale(double scale); ///< kept between 1 and 2
    /// Whether windows may be translucent; without it they have no shadow and square corners.
    void setCompositing(bool compositing);

    /// Hands this object to the views of `engine`, which must not outlive it.
    void install(QQmlEngine& engine);
    static Look* create(QQmlEngine* engine, QJSEngine*);

signals:
    void changed();
    void typingChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool m_dark = true;
    bool m_reducedMotion = false;
    bool m_highContrast = false;
    bool m_compositing = true;
    double m_textScale = 1;
    bool m_typing = false;
};

} // namespace murmeli
