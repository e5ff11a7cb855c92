#pragma once

#include "Message.h"

#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include <functional>

class QJSEngine;
class QQmlEngine;

namespace murmeli {

class Prefs;

/// The language of the interface and its texts. QML reads them through the singleton L, which asks for each
/// text in the language of the moment, so that bindings follow a change. Main thread only.
class Language final : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Language)
    QML_SINGLETON
    Q_PROPERTY(QString current READ current NOTIFY changed FINAL)

public:
    /// \param preferred the user's languages in order of preference; asked on every look.
    Language(const Prefs& prefs, std::function<QStringList()> preferred, QObject* parent = nullptr);

    static const QString fallback;
    static const QStringList supported;

    /// "ru" or "en": the preference "locale" when it is one of them, else the first preferred language when
    /// it is, else Russian.
    [[nodiscard]] QString locale() const;

    /// The language that views show: as locale(), at the last refresh.
    [[nodiscard]] QString current() const { return m_current; }

    /// Looks whether the language has changed, and tells views.
    void refresh();

    /// The text of `key` in the language that views show; Russian when that lacks it; else the key itself.
    [[nodiscard]] QString t(const QString& key) const { return text(m_current, key); }
    [[nodiscard]] QString t(const QString& key, const QString& argument) const
    {
        return text(m_current, key, argument);
    }
    [[nodiscard]] QString say(const Message& message) const { return say(m_current, message); }

    Q_INVOKABLE static QString text(const QString& language, const QString& key);
    /// Every "%@" is replaced by `argument`, which is taken literally.
    Q_INVOKABLE static QString text(const QString& language, const QString& key, const QString& argument);

    Q_INVOKABLE static QString say(const QString& language, const murmeli::Message& message);

    /// A number of things: the text of `key` with ".one", ".few" or ".many" as the language counts, and the
    /// number in the place of "%@".
    Q_INVOKABLE static QString count(const QString& language, const QString& key, qint64 number);
    /// With its digits in groups.
    static QString number(const QString& language, qint64 number);

    /// As it is written, "42 %", and read out, "42 процента".
    Q_INVOKABLE static QString percent(const QString& language, int percent);
    Q_INVOKABLE static QString spokenPercent(const QString& language, int percent);
    /// A running time as it is read out: "17 минут 38 секунд".
    Q_INVOKABLE static QString spokenDuration(const QString& language, double seconds);

    /// As it is written in a line of text: "1 ч 37 мин", of less than a minute "48 с".
    static QString shortDuration(const QString& language, qint64 seconds);
    /// Of a file or a disk, as "320 МБ", of less than a megabyte "12 КБ".
    static QString size(const QString& language, qint64 bytes);

    /// Hands this object to the views of `engine`, which must not outlive it.
    void install(QQmlEngine& engine);
    static Language* create(QQmlEngine* engine, QJSEngine*);

signals:
    void changed();

private:
    const Prefs& m_prefs;
    std::function<QStringList()> m_preferred;
    QString m_current;
};

} // namespace murmeli
