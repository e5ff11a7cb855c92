#include "TrayIcon.h"
#include "Trays.h"

#include <QApplication>
#include <QEvent>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

/// Whether the desktop's bar inks a symbolic icon that it finds by name; any other could show it dark on
/// dark. Names and pixels are not mixed: not every bar follows from the one to the other.
bool recolours()
{
    static const QStringList known{u"GNOME"_s, u"KDE"_s,    u"X-Cinnamon"_s, u"LXQt"_s,
                                   u"XFCE"_s,  u"Budgie"_s, u"Pantheon"_s};
    const QStringList desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':');
    return std::any_of(desktops.begin(), desktops.end(),
                       [](const QString& name) { return known.contains(name); });
}

/// Qt decides for good between the two kinds of trays when the first icon is made, and waits for an answer
/// then. So the icon is made only when there is a tray to take it, however late that comes.
class LinuxStatusItem final : public TrayIcon {
public:
    LinuxStatusItem()
    {
        connect(&m_host, &NotifierHost::changed, this, &LinuxStatusItem::look);
        connect(&m_xembed, &XEmbedTray::came, this, &LinuxStatusItem::look);
    }

    [[nodiscard]] Ground ground() const override
    {
        if (m_kind == Kind::None) return Ground::OfTheTheme;
        const auto dark = m_kind == Kind::XEmbed ? XEmbedTray::isDark() : std::nullopt;
        if (!dark) return Ground::Unknown;
        return *dark ? Ground::Dark : Ground::Light;
    }

    void setLook(const Look& look) override
    {
        Look shown = look;
        if (m_kind == Kind::Notifier && recolours() && QIcon::hasThemeIcon(look.installedName))
            shown.icon = QIcon::fromTheme(look.installedName);
        TrayIcon::setLook(shown);
    }

    void show() override
    {
        m_wanted = true;
        look();
    }

    [[nodiscard]] bool hasTray() const override
    {
        switch (m_kind) {
        case Kind::Notifier:
            return m_host.state() == NotifierHost::State::There;
        case Kind::XEmbed:
            return XEmbedTray::isThere();
        case Kind::None:
            break;
        }
        return false;
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Enter && watched->inherits("QSystemTrayIconSys")) emit pointedAt();
        return false;
    }

private:
    enum class Kind { None, Notifier, XEmbed };

    void look()
    {
        const auto host = m_host.state();
        if (m_kind == Kind::None && m_wanted && host != NotifierHost::State::Unknown) {
            if (host == NotifierHost::State::There) {
                m_kind = Kind::Notifier;
            } else if (XEmbedTray::isThere()) {
                m_kind = Kind::XEmbed;
            }
            if (m_kind == Kind::XEmbed) qApp->installEventFilter(this);
            if (m_kind != Kind::None) {
                TrayIcon::show();
                handOverMenu();
            }
        }
        if (hasTray()) emit trayCame();
    }

    NotifierHost m_host;
    XEmbedTray m_xembed;
    Kind m_kind = Kind::None;
    bool m_wanted = false;
};

} // namespace

std::unique_ptr<StatusItem> makeStatusItem() { return std::make_unique<LinuxStatusItem>(); }

} // namespace murmeli
