#include "Words.h"

#include "IrregularWords.h"

#include <algorithm>
#include <cstdlib>
#include <libstemmer.h>
#include <numeric>
#include <vector>

using namespace Qt::StringLiterals;

namespace murmeli::words {

namespace {

constexpr qsizetype longestKey = 64;    // characters
constexpr qsizetype mostKnown = 20'000; // words whose keys are remembered

bool isCyrillic(QChar c) { return c >= QChar{0x400} && c <= QChar{0x52f}; }
bool isLatin(QChar c) { return c.script() == QChar::Script_Latin; }
bool isVowel(QChar c) { return u"аеёиоуыэюя"_s.contains(c); }
bool isConsonant(QChar c) { return !u"аеёиоуыэюяьъй"_s.contains(c); }

bool isWordly(char32_t c) { return QChar::isLetterOrNumber(c) || QChar::isMark(c); }

/// The code point at `at`, and how many code units it takes.
std::pair<char32_t, qsizetype> characterAt(QStringView text, qsizetype at)
{
    const QChar first = text[at];
    if (first.isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate())
        return {QChar::surrogateToUcs4(first, text[at + 1]), 2};
    return {first.unicode(), 1};
}

// What comes and goes before the last consonant within one word's forms: сборок and сборки, конец and конца.
QString withoutFleetingVowel(const QString& stem)
{
    const qsizetype size = stem.size();
    if (size < 4) return stem;
    const QChar last = stem[size - 1], vowel = stem[size - 2];
    const QChar before = stem[size - 3];
    if (vowel == u'ь' && isConsonant(before)) return stem.left(size - 2) + last; // владельца
    if (vowel == u'е' && last == u'к' && isVowel(before)) return stem.left(size - 2) + u"йк"_s; // копеек
    const bool fleeting = u"кцнлрм"_s.contains(last) && (vowel == u'о' || vowel == u'е');
    return fleeting && isConsonant(before) ? stem.left(size - 2) + last : stem;
}

// оформлю and оформить.
QString withoutLabialL(const QString& stem)
{
    const qsizetype size = stem.size();
    const bool inserted = size >= 5 && stem.endsWith(u'л') && u"бпвмф"_s.contains(stem[size - 2]);
    return inserted ? stem.chopped(1) : stem;
}

QString stemOf(sb_stemmer* stemmer, const QString& word)
{
    const QByteArray bytes = word.toUtf8();
    const auto* stem = stemmer
                           ? sb_stemmer_stem(stemmer, reinterpret_cast<const sb_symbol*>(bytes.constData()),
                                             int(bytes.size()))
                           : nullptr;
    return stem ? QString::fromUtf8(reinterpret_cast<const char*>(stem), sb_stemmer_length(stemmer)) : word;
}

} // namespace

QList<Span> split(QStringView text)
{
    QList<Span> found;
    for (qsizetype at = 0; at < text.size();) {
        const auto [first, units] = characterAt(text, at);
        if (!isWordly(first)) {
            at += units;
            continue;
        }
        const qsizetype begin = at;
        bool digit = false;
        while (at < text.size()) {
            const auto [c, size] = characterAt(text, at);
            if (isWordly(c)) {
                digit = QChar::isDigit(c);
                at += size;
            } else if (digit && (c == U'.' || c == U',') && at + 1 < text.size() && text[at + 1].isDigit()) {
                ++at;
            } else {
                break;
            }
        }
        found.append({begin, at - begin});
    }
    return found;
}

QString folded(QStringView word)
{
    QString text = word.toString();
    // Most words have no letter that could be composed.
    if (std::ranges::any_of(text, [](QChar c) { return c >= QChar{0x300} && !isCyrillic(c); }))
        text = text.normalized(QString::NormalizationForm_C);
    text = text.toLower();
    text.replace(u'ё', u'е');
    text.removeIf([](QChar c) { return c.isMark(); });
    return text;
}

int distance(const QString& left, const QString& right, int most)
{
    if (std::abs(left.size() - right.size()) > most) return most + 1;
    std::vector<int> before(size_t(right.size()) + 1), now(before.size());
    std::iota(before.begin(), before.end(), 0);
    for (qsizetype i = 0; i < left.size(); ++i) {
        now[0] = int(i) + 1;
        int least = now[0];
        for (qsizetype j = 0; j < right.size(); ++j) {
            const int exchanged = before[size_t(j)] + (left[i] == right[j] ? 0 : 1);
            now[size_t(j) + 1] = std::min({exchanged, before[size_t(j) + 1] + 1, now[size_t(j)] + 1});
            least = std::min(least, now[size_t(j) + 1]);
        }
        if (least > most) return most + 1;
        std::swap(before, now);
    }
    return before.back();
}

Keys::Keys() : m_russian(sb_stemmer_new("russian", "UTF_8")), m_english(sb_stemmer_new("english", "UTF_8")) {}

Keys::~Keys() = default;

void Keys::Release::operator()(sb_stemmer* stemmer) const { sb_stemmer_delete(stemmer); }

const QByteArray& Keys::of(QStringView word)
{
    const QString asItStands = word.toString();
    const auto known = m_known.constFind(asItStands);
    if (known != m_known.cend()) return *known;
    if (m_known.size() >= mostKnown) m_known.clear();
    return *m_known.insert(asItStands, made(folded(word)));
}

QByteArray Keys::made(const QString& word) const
{
    const QString regular = irregular::dictionaryForm(word).value_or(word);
    QString key = regular;
    if (std::ranges::any_of(regular, isCyrillic)) {
        key = withoutFleetingVowel(withoutLabialL(stemOf(m_russian.get(), regular)));
    } else if (std::ranges::all_of(regular, isLatin)) {
        key = stemOf(m_english.get(), regular);
    }
    return key.left(longestKey).toUtf8();
}

} // namespace murmeli::words
