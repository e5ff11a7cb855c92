#pragma once

#include <QObject>

#include <memory>

namespace murmeli {

/// How the desktop wants programs to look. Dark and with motion until the desktop says otherwise; an answer
/// that never comes changes nothing and delays nothing. Main thread only.
class Appearance : public QObject {
    Q_OBJECT

public:
    [[nodiscard]] bool dark() const { return m_dark; }
    [[nodiscard]] bool reducedMotion() const { return m_reducedMotion; }
    [[nodiscard]] bool highContrast() const { return m_highContrast; }
    /// How much larger than usual texts are wished for, beside what the screen's own scale does.
    [[nodiscard]] double textScale() const { return m_textScale; }

signals:
    void changed();

protected:
    void setDark(bool dark)
    {
        if (m_dark == dark) return;
        m_dark = dark;
        emit changed();
    }
    void setReducedMotion(bool reduced)
    {
        if (m_reducedMotion == reduced) return;
        m_reducedMotion = reduced;
        emit changed();
    }

    void setHighContrast(bool high)
    {
        if (m_highContrast == high) return;
        m_highContrast = high;
        emit changed();
    }

    void setTextScale(double scale)
    {
        if (m_textScale == scale) return;
        m_textScale = scale;
        emit changed();
    }

private:
    bool m_dark = true;
    bool m_reducedMotion = false;
    bool m_highContrast = false;
    double m_textScale = 1;
};

std::unique_ptr<Appearance> makeAppearance();

} // namespace murmeli
