#include <QApplication>
#include <QPixmap>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickView>
#include <QQuickWindow>
#include <QSystemTrayIcon>
#include <QTime>
#include <QTimer>

int main(int argc, char* argv[])
{
    QQuickWindow::setSceneGraphBackend(QStringLiteral("software")); // as Murmeli where nothing else draws
    QApplication app{argc, argv};
    QApplication::setQuitOnLastWindowClosed(false);
    QPixmap pixmap{22, 22};
    pixmap.fill(Qt::white);
    QSystemTrayIcon icon{QIcon{pixmap}};
    icon.show();
    QQuickView view;
    QTimer::singleShot(0, &view, [&view] {
        auto* component = new QQmlComponent{view.engine(), &view};
        component->setData(
            "import QtQuick\nimport QtQuick.Controls.Basic\nItem { Button { text: 'Record' } }", {});
        view.setContent({}, component, component->create());
        view.create();
    });
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &view,
                     [&view] { view.setProperty("now", QTime::currentTime()); });
    poll.start(1500);
    return QApplication::exec();
}
