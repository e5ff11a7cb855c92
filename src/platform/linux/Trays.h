#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <cstdint>
#include <optional>

namespace murmeli {

/// A bar that takes icons over D-Bus, recolours them and shows their menus by itself (StatusNotifierItem).
/// Asks without waiting. Main thread only.
class NotifierHost final : public QObject {
    Q_OBJECT

public:
    NotifierHost();

    enum class State {
        Unknown, ///< not answered yet, or not at all: whoever asks it now would wait
        Absent,
        There
    };
    [[nodiscard]] State state() const { return m_state; }

signals:
    void changed();

private slots:
    void ask();

private:
    void become(State state);

    State m_state = State::Unknown;
    int m_asked = 0; ///< times; only the newest answer counts
};

/// A bar that takes the icons' windows in over the X server, and shows the very pixels that it is given
/// (XEmbed). Main thread only.
class XEmbedTray final : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    XEmbedTray();
    ~XEmbedTray() override;
    Q_DISABLE_COPY_MOVE(XEmbedTray)

    [[nodiscard]] static bool isThere();

    /// Whether it is so dark that it wants light icons; nothing where it does not say.
    [[nodiscard]] static std::optional<bool> isDark();

signals:
    void came();

private:
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

    uint32_t m_announcement = 0; ///< the type of message by which a tray says that it is there
};

} // namespace murmeli
