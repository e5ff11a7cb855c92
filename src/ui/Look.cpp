#include "Look.h"

#include "ShadowImages.h"
#include "platform/Appearance.h"

#include <QEvent>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QScreen>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr auto engineProperty = "murmeliLook";

QString familyOr(const QString& wanted, QFontDatabase::SystemFont other)
{
    return QFontDatabase::hasFamily(wanted) ? wanted : QFontDatabase::systemFont(other).family();
}

} // namespace

Look::Look(QObject* parent) : QObject(parent)
{
    if (qGuiApp) qGuiApp->installEventFilter(this);
}

bool Look::eventFilter(QObject*, QEvent* event)
{
    const auto type = event->type();
    const bool typing = type == QEvent::KeyPress;
    if ((typing || type == QEvent::MouseMove) && std::exchange(m_typing, typing) != typing)
        emit typingChanged();
    return false;
}

QString Look::family() { return familyOr(u"Inter"_s, QFontDatabase::GeneralFont); }

QString Look::fixedFamily() { return familyOr(u"DejaVu Sans Mono"_s, QFontDatabase::FixedFont); }

double Look::pointsPerPixel()
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    return 72 / (screen ? screen->logicalDotsPerInchY() : 96);
}

void Look::follow(const Appearance& appearance)
{
    const auto take = [this, &appearance] {
        setDark(appearance.dark());
        setReducedMotion(appearance.reducedMotion());
        setHighContrast(appearance.highContrast());
        setTextScale(appearance.textScale());
    };
    connect(&appearance, &Appearance::changed, this, take);
    take();
}

void Look::setDark(bool dark)
{
    if (std::exchange(m_dark, dark) != dark) emit changed();
}

void Look::setReducedMotion(bool reduced)
{
    if (std::exchange(m_reducedMotion, reduced) != reduced) emit changed();
}

void Look::setHighContrast(bool high)
{
    if (std::exchange(m_highContrast, high) != high) emit changed();
}

void Look::setTextScale(double scale)
{
    const double kept = scale >= 1 ? std::min(scale, 2.0) : 1; // no number is not either
    if (std::exchange(m_textScale, kept) != kept) emit changed();
}

void Look::setCompositing(bool compositing)
{
    if (std::exchange(m_compositing, compositing) != compositing) emit changed();
}

void Look::install(QQmlEngine& engine)
{
    engine.setProperty(engineProperty, QVariant::fromValue(this));
    engine.addImageProvider(u"shadow"_s, new ShadowImages); // the engine's from now on
}

Look* Look::create(QQmlEngine* engine, QJSEngine*)
{
    auto* look = engine->property(engineProperty).value<Look*>();
    Q_ASSERT_X(look, "Look", "install() it on the engine first");
    QJSEngine::setObjectOwnership(look, QJSEngine::CppOwnership);
    return look;
}

} // namespace murmeli
