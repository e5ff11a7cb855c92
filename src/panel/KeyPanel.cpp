#include "KeyPanel.h"

#include "PanelModel.h"
#include "account/AuthManager.h"
#include "margin/RecordingMarks.h"
#include "notices/NoticeBoard.h"
#include "platform/ClickOutside.h"
#include "platform/Memory.h"
#include "platform/WindowSystem.h"
#include "ui/FocusKeeper.h"
#include "ui/SymbolImage.h"
#include "update/Updater.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QQuickItem>
#include <QScreen>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr Qt::WindowFlags floatingFlags =
    Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint;

constexpr int frameHeight = 48; // about what a desktop puts around a window, known only once it is there

} // namespace

KeyPanel::KeyPanel(QQmlEngine& engine, Kind kind, const Parts& parts)
    : QQuickView(&engine, nullptr), m_panel(parts.panel), m_kind(kind), m_escapeCloses(kind == Kind::Floating)
{
    const bool floating = kind == Kind::Floating;
    if (floating) {
        setFlags(floatingFlags);
        setColor(Qt::transparent);
    }
    if (!floating) setIcon(symbols::program());
    new FocusKeeper{this};
    setTitle(u"Murmeli"_s);
    setResizeMode(QQuickView::SizeRootObjectToView);
    setInitialProperties({{u"appState"_s, QVariant::fromValue(&parts.state)},
                          {u"record"_s, QVariant::fromValue(&parts.record)},
                          {u"panel"_s, QVariant::fromValue(&parts.panel)},
                          {u"account"_s, QVariant::fromValue(&parts.account)},
                          {u"updater"_s, QVariant::fromValue(&parts.updater)},
                          {u"board"_s, QVariant::fromValue(&parts.board)},
                          {u"marks"_s, QVariant::fromValue(&parts.marks)},
                          {u"actions"_s, QVariant::fromValue(&m_actions)},
                          {u"floating"_s, floating}});
    connect(&m_actions, &WindowActions::faded, this, &QWindow::hide);
    connect(&m_actions, &WindowActions::pressedBeside, this, &KeyPanel::pressedOutside);
    setSource(QUrl{u"qrc:/qt/qml/Murmeli/Panel/PanelView.qml"_s});
    if (QQuickItem* root = rootObject()) {
        connect(root, &QQuickItem::implicitHeightChanged, this, &KeyPanel::contentSizeChanged);
        if (!floating) {
            connect(this, &KeyPanel::contentSizeChanged, this, &KeyPanel::fitScreen);
            fitScreen();
        }
    }
}

KeyPanel::~KeyPanel() = default;

QSize KeyPanel::contentSize() const
{
    const QObject* root = rootObject();
    return root ? root->property("contentSize").toSizeF().toSize() : QSize{};
}

void KeyPanel::fitScreen()
{
    QSize size = contentSize();
    if (const QScreen* on = screen())
        size.setHeight(std::min(size.height(), on->availableGeometry().height() - frameHeight));
    setMinimumSize(size);
    setMaximumSize(size);
    resize(size);
}

void KeyPanel::openAt(const QRect& place, const QRect& icon, bool above)
{
    QObject* root = rootObject();
    if (!root) return;
    root->setProperty("above", above);
    const int side = root->property("sideMargin").toInt();
    const int top = root->property("topMargin").toInt();
    const int bottom = root->property("bottomMargin").toInt();
    const QRect window = place.adjusted(-side, -top, side, bottom);
    setGeometry(window);
    // The shadow around the body may reach over the icon.
    const QRect covered = icon & window;
    setMask(covered.isEmpty() ? QRegion{}
                              : QRegion{QRect{{}, window.size()}} - covered.translated(-window.topLeft()));
    if (m_open) return;
    setOpen(true);
    windowSystem::floatEverywhere(this);
    show();
    windowSystem::bringForward(this, true);
    m_clickOutside = makeClickOutside(this, [this] { emit pressedOutside(); });
}

void KeyPanel::openOrdinary(bool escapeCloses)
{
    m_escapeCloses = escapeCloses;
    setOpen(true);
    show();
    raise();
    requestActivate();
}

void KeyPanel::closePanel()
{
    if (!m_open) return;
    m_clickOutside.reset();
    setOpen(false); // the view fades and then asks to be hidden
}

void KeyPanel::setOpen(bool open)
{
    m_open = open;
    if (QObject* root = rootObject()) root->setProperty("open", open);
}

void KeyPanel::hideEvent(QHideEvent* event)
{
    QQuickView::hideEvent(event);
    QMetaObject::invokeMethod(qApp, &memory::giveBack, Qt::QueuedConnection); // once what was shown has gone
    if (m_kind == Kind::Ordinary && m_open) setOpen(false);
}

void KeyPanel::keyPressEvent(QKeyEvent* event)
{
    QQuickView::keyPressEvent(event);
    if (event->isAccepted()) return;
    const bool escapes = m_escapeCloses && event->key() == Qt::Key_Escape;
    if (escapes || event->matches(QKeySequence::Close)) closePanel();
    if (event->matches(QKeySequence::Quit)) emit m_panel.quitRequested();
}

} // namespace murmeli
