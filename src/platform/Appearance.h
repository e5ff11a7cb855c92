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

private:
    bool m_dark = true;
    bool m_reducedMotion = false;
};

std::unique_ptr<Appearance> makeAppearance();

} // namespace murmeli
