#include "HandoutPages.h"

#include <QHash>
#include <QRegularExpression>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

/// The objects of a PDF as our own writer makes it.
class Objects {
public:
    explicit Objects(const QByteArray& pdf) : m_pdf(pdf)
    {
        const qsizetype start = pdf.lastIndexOf("startxref");
        const qsizetype table =
            start < 0 ? -1 : pdf.mid(start + 10, 20).trimmed().split('\n').first().toLongLong();
        if (table < 0 || !pdf.mid(table).startsWith("xref")) return;
        const QByteArrayList lines = pdf.mid(table, start - table).split('\n');
        for (qsizetype i = 2; i < lines.size() && lines[i].size() >= 18; ++i)
            m_offsets.append(lines[i].first(10).toLongLong());
    }

    [[nodiscard]] int size() const { return int(m_offsets.size()); }

    /// What stands between "obj" and "endobj", or the stream.
    [[nodiscard]] QByteArray head(int number) const
    {
        if (number <= 0 || number >= m_offsets.size()) return {};
        const qsizetype begin = m_pdf.indexOf("obj", m_offsets[number]) + 3;
        const qsizetype end = m_pdf.indexOf("endobj", begin);
        const qsizetype stream = m_pdf.indexOf("stream\n", begin);
        const qsizetype to = stream >= 0 && stream < end ? stream : end;
        return to < begin ? QByteArray{} : m_pdf.mid(begin, to - begin);
    }

    [[nodiscard]] QByteArray stream(int number) const
    {
        const QByteArray head = this->head(number);
        const int size = reference(head, "/Length");
        const qsizetype begin = m_pdf.indexOf("stream\n", m_offsets[number]) + 7;
        const qsizetype length = size > 0 ? this->head(size).trimmed().toLongLong() : value(head, "/Length");
        if (length <= 0 || begin + length > m_pdf.size()) return {};
        const QByteArray bytes = m_pdf.mid(begin, length);
        if (!head.contains("/FlateDecode")) return bytes;
        QByteArray sized(4, '\0');
        qToBigEndian(quint32(4 * length), sized.data()); // a guess; it grows
        return qUncompress(sized + bytes);
    }

    /// The object that a key refers to, as "/ToUnicode 16 0 R"; 0 when it refers to none.
    static int reference(const QByteArray& head, const char* key)
    {
        const QRegularExpression pattern{QString::fromLatin1(key) + u" (\\d+) 0 R"_s};
        return pattern.match(QString::fromLatin1(head)).captured(1).toInt();
    }
    static qsizetype value(const QByteArray& head, const char* key)
    {
        const QRegularExpression pattern{QString::fromLatin1(key) + u" (\\d+)"_s};
        return pattern.match(QString::fromLatin1(head)).captured(1).toLongLong();
    }

private:
    const QByteArray& m_pdf;
    QList<qsizetype> m_offsets;
};

using Names = QHash<uint, QChar>; // of glyphs

Names namesOf(const QByteArray& toUnicode)
{
    static const QRegularExpression line{u"^<([0-9A-F]{4})> <[0-9A-F]{4}> \\[?((?:<[0-9A-F]{4}> ?)+)\\]?"_s,
                                         QRegularExpression::MultilineOption};
    Names names;
    for (auto it = line.globalMatch(QString::fromLatin1(toUnicode)); it.hasNext();) {
        const auto match = it.next();
        uint glyph = match.captured(1).toUInt(nullptr, 16);
        const QStringList characters = match.captured(2).split(u'<', Qt::SkipEmptyParts);
        for (const QString& character : characters)
            names.insert(glyph++, QChar{char16_t(character.left(4).toUInt(nullptr, 16))});
    }
    return names;
}

/// What a page's content draws. Pieces that touch each other are one word, as when the script changes in it.
QString textOf(const QByteArray& content, const QHash<QByteArray, Names>& fonts)
{
    QString text;
    Names names;
    double size = 0;
    double x = 0;
    double y = 0;
    bool begins = false; // a piece
    const QByteArrayList tokens = content.simplified().split(' ');
    for (qsizetype i = 2; i < tokens.size(); ++i) {
        const QByteArray& token = tokens[i];
        if (token == "Tf") {
            names = fonts.value(tokens[i - 2]);
            size = tokens[i - 1].toDouble();
        } else if (token == "BT") {
            begins = true;
        } else if (token == "Td") {
            const double dx = tokens[i - 2].toDouble();
            const double dy = tokens[i - 1].toDouble();
            const bool touches = dy == y && dx > x && dx - x < size;
            if (begins && !touches) text += u'\n';
            x = begins ? dx : x + dx;
            y = begins ? dy : y + dy;
            begins = false;
        } else if (token == "Tj") {
            const QByteArray glyphs = QByteArray::fromHex(tokens[i - 1]);
            for (qsizetype at = 0; at + 1 < glyphs.size(); at += 2)
                text += names.value(qFromBigEndian<quint16>(glyphs.constData() + at),
                                    QChar::ReplacementCharacter);
        }
    }
    return text;
}

QString titleOf(const QByteArray& information)
{
    // UTF-16 with "\" before brackets and itself.
    const qsizetype begin = information.indexOf("/Title (") + 8;
    const qsizetype end = information.indexOf(")\n/Creator", begin);
    if (begin < 8 || end < begin) return {};
    QByteArray bytes;
    for (qsizetype i = begin; i < end; ++i) {
        if (information[i] == '\\' && i + 1 < end) ++i;
        bytes += information[i];
    }
    QString title;
    for (qsizetype i = 2; i + 1 < bytes.size(); i += 2)
        title += QChar{qFromBigEndian<quint16>(bytes.constData() + i)};
    return title;
}

} // namespace

std::optional<QString> textInPdf(const QByteArray& pdf)
{
    const Objects objects{pdf};
    if (objects.size() < 2) return std::nullopt;
    QHash<QByteArray, Names> fonts;
    for (int i = 1; i < objects.size(); ++i) {
        const int names = Objects::reference(objects.head(i), "/ToUnicode");
        if (names > 0) fonts.insert("/F" + QByteArray::number(i), namesOf(objects.stream(names)));
    }
    QString text = titleOf(objects.head(1));
    for (int i = 1; i < objects.size(); ++i) {
        const QByteArray head = objects.head(i);
        if (!head.contains("/Type /Page\n")) continue;
        const QByteArray content = objects.stream(Objects::reference(head, "/Contents"));
        if (content.isEmpty()) return std::nullopt;
        text += u'\n' + textOf(content, fonts);
    }
    return text;
}

} // namespace murmeli
