#pragma once

#include <QIcon>
#include <QObject>
#include <QRect>
#include <QString>

#include <memory>

namespace murmeli {

/// The icon in the desktop's tray or menu bar. It also appears when the tray comes later than we do.
/// Main thread only.
class StatusItem : public QObject {
    Q_OBJECT

public:
    struct Look {
        QIcon icon;             ///< drawn for the bar's ink
        QString installedName;  ///< of the same icon where it is installed; one ink for the desktop to choose
        bool isTemplate = true; ///< one ink, to be recoloured by systems that do so
    };
    struct MenuTexts {
        QString state; ///< shown greyed at the top
        QString record;
        QString open;
        QString window;   ///< the main one
        QString settings; ///< left out when empty
        QString quit;
    };

    /// What the icon will stand on.
    enum class Ground { OfTheTheme, Dark, Light, Unknown };
    [[nodiscard]] virtual Ground ground() const { return Ground::OfTheTheme; }

    virtual void setLook(const Look& look) = 0;
    virtual void setName(const QString& name) = 0; ///< tool tip and accessible name
    virtual void setMenu(const MenuTexts& texts) = 0;
    virtual void show() = 0;

    /// Where the icon stands; empty where the desktop does not say.
    [[nodiscard]] virtual QRect geometry() const = 0;

    /// Whether the desktop has a tray at this moment.
    [[nodiscard]] virtual bool hasTray() const = 0;

signals:
    void trayCame();  ///< again too, and perhaps with another ground
    void pointedAt(); ///< where the desktop tells it: a press is likely to follow
    void pressed();   ///< once for every press with the main button
    void recordChosen();
    void openChosen();
    void windowChosen();
    void settingsChosen();
    void quitChosen();
};

std::unique_ptr<StatusItem> makeStatusItem();

} // namespace murmeli
