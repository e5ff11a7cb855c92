#include "Appearance.h"

#include "WindowSystem.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

const QString portalService = u"org.freedesktop.portal.Desktop"_s;
const QString portalPath = u"/org/freedesktop/portal/desktop"_s;
const QString settingsInterface = u"org.freedesktop.portal.Settings"_s;

/// Reads the desktop's settings portal and listens to it. Every call is asynchronous.
class PortalAppearance final : public Appearance {
    Q_OBJECT

public:
    PortalAppearance()
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        if (!bus.isConnected()) return;
        // Before anything else has used it, connect() does not know the type and refuses the slot.
        qDBusRegisterMetaType<QDBusVariant>();
        bus.connect(portalService, portalPath, settingsInterface, u"SettingChanged"_s, this,
                    SLOT(settingChanged(QString, QString, QDBusVariant)));
        ask(u"org.freedesktop.appearance"_s, u"color-scheme"_s);
        ask(u"org.freedesktop.appearance"_s, u"contrast"_s);
        ask(u"org.freedesktop.appearance"_s, u"reduced-motion"_s);
        ask(u"org.gnome.desktop.interface"_s, u"enable-animations"_s);
        ask(u"org.gnome.desktop.interface"_s, u"text-scaling-factor"_s);
        ask(u"org.kde.kdeglobals.KDE"_s, u"AnimationDurationFactor"_s);
    }

private slots:
    void settingChanged(const QString& space, const QString& key, const QDBusVariant& value)
    {
        take(space, key, value.variant());
    }

private:
    void ask(const QString& space, const QString& key)
    {
        QDBusMessage call =
            QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, u"Read"_s);
        call.setArguments({space, key});
        auto* watcher = new QDBusPendingCallWatcher{QDBusConnection::sessionBus().asyncCall(call), this};
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, space, key] {
            const QDBusPendingReply<QDBusVariant> reply = *watcher;
            if (!reply.isError()) take(space, key, reply.value().variant());
            watcher->deleteLater();
        });
    }

    void take(const QString& space, const QString& key, QVariant value)
    {
        // Read() wraps the value once more than the signal does.
        while (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
            value = value.value<QDBusVariant>().variant();
        }
        if (key == "color-scheme"_L1 && space == "org.freedesktop.appearance"_L1) {
            setDark(value.toUInt() != 2); // 0 no preference, 1 dark, 2 light
        } else if (key == "contrast"_L1) {
            setHighContrast(value.toUInt() == 1);
        } else if (key == "reduced-motion"_L1) {
            wishLessMotion(Wish::Portal, value.toUInt() == 1);
        } else if (key == "enable-animations"_L1) {
            wishLessMotion(Wish::Gnome, !value.toBool());
        } else if (key == "text-scaling-factor"_L1) {
            // On X most desktops put it into the resolution too, by which Qt scales all.
            const double done = windowSystem::placesWindows() ? qGuiApp->devicePixelRatio() : 1;
            setTextScale(value.toDouble() / done);
        } else if (key == "AnimationDurationFactor"_L1) {
            wishLessMotion(Wish::Kde, value.toDouble() == 0);
        }
    }

    // Desktops answer for each other with their defaults, so one wish is enough.
    enum Wish : unsigned { Portal = 1, Gnome = 2, Kde = 4 };
    void wishLessMotion(Wish wish, bool there)
    {
        m_lessMotion = there ? m_lessMotion | wish : m_lessMotion & ~unsigned(wish);
        setReducedMotion(m_lessMotion != 0);
    }

    unsigned m_lessMotion = 0;
};

} // namespace

std::unique_ptr<Appearance> makeAppearance() { return std::make_unique<PortalAppearance>(); }

} // namespace murmeli

#include "Appearance.moc"
