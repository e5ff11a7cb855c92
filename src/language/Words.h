#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <memory>

struct sb_stemmer;

/// Words of Russian and English, as they are searched and compared.
namespace murmeli::words {

/// A word's place in its text, in code units.
struct Span {
    qsizetype begin = 0;
    qsizetype size = 0;

    [[nodiscard]] QStringView in(QStringView text) const { return text.sliced(begin, size); }
    bool operator==(const Span&) const = default;
};

/// Runs of letters, digits and marks. A dot or comma between two digits joins, as in 0.9; a hyphen parts. Any
/// thread.
QList<Span> split(QStringView text);

/// Composed, in lower case, with е for ё and without marks that stand on their own. Any thread.
QString folded(QStringView word);

/// How many letters differ: exchanged, left out or added. Of more than `most` it only says that they are
/// more. Any thread.
int distance(const QString& left, const QString& right, int most);

/// The keys of words: equal for all forms of one. Remembers those that it has made, within bounds. One thread
/// at a time.
class Keys {
public:
    Keys();
    ~Keys();
    Q_DISABLE_COPY_MOVE(Keys)

    /// In UTF-8, 64 characters at most; empty for an empty word.
    const QByteArray& of(QStringView word);

private:
    struct Release {
        void operator()(sb_stemmer* stemmer) const;
    };
    using Stemmer = std::unique_ptr<sb_stemmer, Release>;

    [[nodiscard]] QByteArray made(const QString& folded) const;

    Stemmer m_russian;
    Stemmer m_english;
    QHash<QString, QByteArray> m_known; ///< by the word as it stands
};

} // namespace murmeli::words
