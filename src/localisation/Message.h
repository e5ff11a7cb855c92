#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

/// A text that C++ hands to views: a key with its argument, or somebody else's words as they stand. Views
/// render it with L.say, so that it follows the language; nothing translated is kept.
struct Message {
    Q_GADGET
    QML_VALUE_TYPE(message)
    Q_PROPERTY(bool empty READ isEmpty FINAL)

public:
    QString key;
    QString argument; ///< in the place of "%@"
    QString own;      ///< instead of a key

    static Message of(const char* key, const QString& argument = {})
    {
        return {QString::fromLatin1(key), argument, {}};
    }
    static Message ofWords(const QString& own) { return {{}, {}, own}; }
    /// `words` when there are any, else the text of `key`.
    static Message foreignOr(const QString& words, const char* key)
    {
        return words.isEmpty() ? of(key) : ofWords(words);
    }

    [[nodiscard]] bool isEmpty() const { return key.isEmpty() && own.isEmpty(); }
    bool operator==(const Message&) const = default;
};

} // namespace murmeli
