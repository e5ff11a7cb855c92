#include "Activation.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QVariantMap>

#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

/// What desktops call on a program whose entry is marked as activatable over D-Bus.
class Activation final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    Activation(QObject* context, std::function<void(const QString&)> told)
        : QObject(context), m_told(std::move(told))
    {
    }

public slots:
    // The names are those of the interface.
    void Activate(const QVariantMap&) { m_told(u"activate"_s); }
    void Open(const QStringList& addresses, const QVariantMap&)
    {
        for (const QString& address : addresses)
            m_told(address);
    }
    void ActivateAction(const QString& name, const QVariantList&, const QVariantMap&) { m_told(name); }

private:
    std::function<void(const QString&)> m_told;
};

} // namespace

void listenToDesktop(const QString& name, QObject* context, std::function<void(const QString&)> told)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    bus.registerObject(u'/' + QString{name}.replace(u'.', u'/'), new Activation{context, std::move(told)},
                       QDBusConnection::ExportAllSlots);
    // Qt's own call would wait for the answer; without the name nobody calls.
    QDBusMessage call = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                                       u"org.freedesktop.DBus"_s, u"RequestName"_s);
    constexpr uint doNotQueue = 4;
    call.setArguments({name, doNotQueue});
    bus.asyncCall(call);
}

} // namespace murmeli

#include "Activation.moc"
