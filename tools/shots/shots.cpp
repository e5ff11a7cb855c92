// Draws every screen in every state, in both languages and themes: murmeli_shots FOLDER [PART OF A NAME]

#include "Shot.h"
#include "support/TestProgram.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace murmeli {

void dress(TestProgram& program, const Frame& frame)
{
    program.prefs.set(u"locale"_s, frame.language);
    program.language.refresh();
    program.look.setDark(frame.dark);
    program.look.setTextScale(frame.textScale);
}

void settle(int milliseconds)
{
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < milliseconds)
        QGuiApplication::processEvents(QEventLoop::AllEvents, 10);
}

void await(const std::function<bool()>& done)
{
    QElapsedTimer time;
    time.start();
    while (!done()) {
        if (time.elapsed() > 10'000) qFatal("A picture's state never came about");
        QGuiApplication::processEvents(QEventLoop::AllEvents, 10);
    }
}

/// Says which texts do not fit, for looks in other types and languages.
static void nameCutTexts(const QQuickItem& item, const QString& picture)
{
    if (!item.isVisible()) return;
    if (item.property("truncated").toBool()) {
        std::fprintf(stderr, "%s: cut: %s\n", qPrintable(picture),
                     qPrintable(item.property("text").toString()));
    }
    for (const QQuickItem* child : item.childItems())
        nameCutTexts(*child, picture);
}

bool save(QQuickWindow& window, const Frame& frame, const QString& name)
{
    const QString file = frame.folder + name + u".png"_s;
    std::printf("%s\n", qPrintable(file));
    nameCutTexts(*window.contentItem(), file);
    return window.grabWindow().save(file);
}

} // namespace murmeli

int main(int argc, char* argv[])
{
    using namespace murmeli;
    const QGuiApplication app{argc, argv};
    const QString only = QString::fromLocal8Bit(argc > 2 ? argv[2] : "");
    const double textScale = argc > 3 ? QByteArray{argv[3]}.toDouble() : 1;
    bool good = argc > 1;
    for (const QString& language : Language::supported) {
        for (const bool dark : {true, false}) {
            const Frame frame{.language = language,
                              .dark = dark,
                              .textScale = textScale,
                              .folder = QString::fromLocal8Bit(argv[1]) + u'/' + language +
                                        (dark ? u"-dark/"_s : u"-light/"_s)};
            QDir{}.mkpath(frame.folder);
            for (const auto& shoot : {shootPanels, shootToasts, shootUpdates, shootSetups, shootPermissions,
                                      shootMain, shootSettings})
                good = shoot(frame, only) && good;
        }
    }
    return good ? 0 : 1;
}
