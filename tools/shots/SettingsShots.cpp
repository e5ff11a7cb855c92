#include "Shot.h"
#include "support/TestProgram.h"
#include "windows/AppWindow.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

struct SettingsShot {
    QString name;
    QByteArray prefs = "{}";
    bool instructions = false;
    bool telegram = false;
    int height = 640;
};

const QList<SettingsShot>& settingsShots()
{
    static const QList<SettingsShot> shots{
        {.name = u"settings"_s},
        {.name = u"settings-unrolled"_s,
         .prefs = R"({"auto_record":false,"delete_source_on_success":false,"max_record_hours":6})",
         .instructions = true,
         .telegram = true,
         .height = 1500},
    };
    return shots;
}

bool shoot(const SettingsShot& shot, const Frame& frame)
{
    TestProgram m;
    m.write(m.paths.prefsFile, shot.prefs);
    dress(m, frame);
    QQmlEngine engine;
    m.install(engine);
    if (shot.instructions) m.write(m.paths.userInstructions, QByteArray(5000, 'x'));
    if (shot.telegram) m.write(m.paths.stateFile, R"({"status":"idle","telegram_connected":true})");
    m.scheduler.advance(1500ms);
    AppWindow window{engine,
                     m.language,
                     {.url = u"qrc:/qt/qml/Murmeli/Settings/SettingsView.qml"_s,
                      .properties = {{u"model"_s, QVariant::fromValue(&m.settings)}, {u"windowed"_s, true}},
                      .titleKey = u"settings.window.title"_s,
                      .size = {560, shot.height}}};
    window.present();
    settle(600);
    return save(window, frame, shot.name);
}

} // namespace

bool shootSettings(const Frame& frame, const QString& only)
{
    bool good = true;
    for (const SettingsShot& shot : settingsShots()) {
        if (shot.name.contains(only)) good = shoot(shot, frame) && good;
    }
    return good;
}

} // namespace murmeli
