#include "HandoutPages.h"

#include "localisation/Language.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QFontDatabase>
#include <QGlyphRun>
#include <QHash>
#include <QPainter>
#include <QPdfWriter>
#include <QRawFont>
#include <QTextBlock>
#include <QTextBoundaryFinder>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr int dpi = 600; // of the layout, whose sizes are all in pixels, so that no screen has a say in it
constexpr double pixelsPerMm = dpi / 25.4;
constexpr double paperWidth = 210 * pixelsPerMm;
constexpr double paperHeight = 297 * pixelsPerMm;
constexpr double marginTop = 20 * pixelsPerMm;
constexpr double marginSide = 18 * pixelsPerMm;
constexpr double footerBaseline = 287 * pixelsPerMm;
constexpr double textWidth = paperWidth - 2 * marginSide;
constexpr double textHeight = paperHeight - 2 * marginTop;

constexpr QRgb black = qRgb(0x12, 0x13, 0x17);
constexpr QRgb grey = qRgb(0x8a, 0x8c, 0x94);

int pixels(double points) { return int(std::lround(points * dpi / 72)); }

QString paperFamily()
{
    const QString inter = u"Inter"_s;
    return QFontDatabase::hasFamily(inter) ? inter
                                           : QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
}

/// Whether a character is set as it stands, one after the other. Shaping such text would join characters to
/// signs that cannot be copied as they read, as the colon of "12:00"; other scripts fall apart without it.
bool isPlain(char32_t c)
{
    const QChar::Script script = QChar::script(c);
    return c < 0x250 || (c >= 0x2010 && c <= 0x205e) || (c >= 0x20a0 && c <= 0x20bf) || c == 0x2116 ||
           script == QChar::Script_Latin || script == QChar::Script_Cyrillic || script == QChar::Script_Greek;
}

QFont fontOf(const QString& family, double points, bool heavy, bool plain)
{
    QFont font{family};
    font.setPixelSize(pixels(points));
    if (heavy) font.setWeight(QFont::DemiBold);
    if (plain) font.setStyleStrategy(QFont::PreferNoShaping);
    return font;
}

/// Writes text into a document.
class Setter {
public:
    Setter(QTextDocument& document, QString family) : m_cursor(&document), m_family(std::move(family)) {}

    struct Style {
        double points = 10;
        bool heavy = false;
        QRgb ink = black;
        double above = 0; ///< the block, in points
        double indent = 0;
    };
    /// \return the number of the block.
    int block(const QString& text, const Style& style)
    {
        QTextBlockFormat format;
        format.setTopMargin(m_begun ? pixels(style.above) : 0);
        format.setLeftMargin(pixels(style.indent));
        format.setLineHeight(140, QTextBlockFormat::ProportionalHeight);
        if (style.indent > 0) {
            format.setTextIndent(-pixels(bulletWidth));
            format.setTabPositions({QTextOption::Tab{0, QTextOption::LeftTab}});
        }
        if (m_begun) {
            m_cursor.insertBlock(format);
        } else {
            m_cursor.setBlockFormat(format);
        }
        m_begun = true;
        write(text, style);
        return m_cursor.block().blockNumber();
    }
    void write(const QString& text, const Style& style)
    {
        const QString composed = text.normalized(QString::NormalizationForm_C);
        QString run;
        bool plain = true;
        const auto flush = [&] {
            if (!run.isEmpty()) m_cursor.insertText(run, format(style, plain));
            run.clear();
        };
        QTextBoundaryFinder finder{QTextBoundaryFinder::Grapheme, composed};
        for (qsizetype at = 0; at < composed.size();) {
            const qsizetype next = std::max<qsizetype>(finder.toNextBoundary(), at + 1);
            QString cluster = composed.mid(at, next - at);
            at = next;
            const char32_t first = cluster.toUcs4().value(0);
            const bool its = isPlain(first);
            if (!its && !QChar::isSpace(first) && !isDrawn(first)) cluster = HandoutPages::standIn;
            if (its != plain && !QChar::isSpace(first)) {
                flush();
                plain = its;
            }
            run += cluster;
        }
        flush();
    }

    static constexpr double bulletWidth = 11; // points

private:
    [[nodiscard]] QTextCharFormat format(const Style& style, bool plain) const
    {
        QTextCharFormat format;
        format.setFont(fontOf(m_family, style.points, style.heavy, plain));
        format.setForeground(QColor{style.ink});
        return format;
    }

    /// Whether a font has an outline for it: pictures in colour cannot be put into a PDF.
    bool isDrawn(char32_t c)
    {
        const auto known = m_drawn.constFind(c);
        if (known != m_drawn.cend()) return *known;
        QTextLayout layout{QString::fromUcs4(&c, 1), fontOf(m_family, 10, false, false)};
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        const QList<QGlyphRun> runs = layout.glyphRuns();
        const bool drawn = !runs.isEmpty() && std::ranges::all_of(runs, [](const QGlyphRun& run) {
            const QRawFont font = run.rawFont();
            const bool coloured = !font.fontTable("CBDT").isEmpty() || !font.fontTable("sbix").isEmpty() ||
                                  !font.fontTable("COLR").isEmpty();
            return !coloured && !run.glyphIndexes().contains(0u);
        });
        m_drawn.insert(c, drawn);
        return drawn;
    }

    QTextCursor m_cursor;
    QString m_family;
    QHash<char32_t, bool> m_drawn;
    bool m_begun = false;
};

constexpr Setter::Style titleStyle{.points = 17, .heavy = true};
constexpr Setter::Style dateStyle{.points = 9, .ink = grey, .above = 2};
constexpr Setter::Style headingStyle{.points = 10.5, .heavy = true, .above = 14};
constexpr Setter::Style paragraphStyle{.above = 5};
constexpr Setter::Style speakerStyle{.heavy = true};
constexpr Setter::Style itemStyle{.above = 4, .indent = Setter::bulletWidth + 4};
constexpr Setter::Style sourceStyle{.points = 9, .ink = grey};

} // namespace

HandoutPages::HandoutPages(const Handout& handout)
    : m_document(std::make_unique<QTextDocument>()), m_title(handout.title)
{
    m_footer = u"Murmeli"_s;
    if (handout.edits > 0) {
        m_footer += Language::text(handout.language, u"common.dot"_s) +
                    Language::text(handout.language, u"desk.edition"_s, QString::number(handout.edits));
    }
    m_family = paperFamily();
    m_document->setUseDesignMetrics(true);
    m_document->setDocumentMargin(0);
    m_document->setUndoRedoEnabled(false);
    layOut(handout);
    m_document->setPageSize({textWidth, textHeight});
    keepHeadings();
    m_count = m_document->pageCount();
}

HandoutPages::~HandoutPages() = default;

void HandoutPages::layOut(const Handout& handout)
{
    Setter set{*m_document, m_family};
    set.block(handout.title, titleStyle);
    set.block(handout.dateLine, dateStyle);
    for (const Handout::Section& section : handout.sections) {
        const bool alone = section.part == HandoutPart::Summary;
        if (!alone) m_headings.append(set.block(section.heading, headingStyle));
        for (const Passage& item : section.items) {
            if (alone) {
                set.block(item.text, {.above = 10});
            } else if (section.part == HandoutPart::Transcript) {
                set.block(Handout::moment(item) + u"  "_s, {.points = 9, .ink = grey, .above = 5});
                if (!item.speaker.isEmpty()) set.write(item.speaker + u": "_s, speakerStyle);
                set.write(item.text, paragraphStyle);
            } else if (section.part == HandoutPart::Quotes) {
                set.block(u"•\t"_s + handout.quoted(item), itemStyle);
                const QString source = Handout::sourceOf(item);
                if (!source.isEmpty()) set.write(u" — "_s + source, sourceStyle);
            } else {
                set.block(u"•\t"_s + item.text, itemStyle);
            }
        }
    }
}

void HandoutPages::keepHeadings()
{
    const auto pageOf = [this](const QTextBlock& block) {
        const double top = m_document->documentLayout()->blockBoundingRect(block).top();
        return int((top + block.layout()->lineAt(0).y()) / textHeight);
    };
    for (const int heading : m_headings) {
        const QTextBlock block = m_document->findBlockByNumber(heading);
        if (!block.next().isValid() || pageOf(block) == pageOf(block.next())) continue;
        QTextCursor cursor{block};
        QTextBlockFormat format = block.blockFormat();
        format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
        cursor.setBlockFormat(format);
    }
}

void HandoutPages::paint(QPainter& painter, int page) const
{
    painter.save();
    painter.translate(marginSide, marginTop - page * textHeight);
    m_document->drawContents(&painter, {0, page * textHeight, textWidth, textHeight});
    painter.restore();
    painter.setPen(QColor{grey});
    painter.setFont(fontOf(m_family, 8, false, true));
    painter.drawText(QPointF{marginSide, footerBaseline}, m_footer);
    const QString number = u"%1 / %2"_s.arg(page + 1).arg(m_count);
    const double width = QFontMetricsF{painter.font(), painter.device()}.horizontalAdvance(number);
    painter.drawText(QPointF{paperWidth - marginSide - width, footerBaseline}, number);
}

HandoutPages::Picture HandoutPages::picture(int page, int pixels) const
{
    if (page < 0 || page >= m_count || pixels <= 0) return {};
    Picture picture;
    picture.image = QImage{pixels, int(std::lround(pixels * heightToWidth)), QImage::Format_RGB32};
    picture.image.fill(Qt::white);
    QPainter painter{&picture.image};
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.scale(pixels / paperWidth, pixels / paperWidth);
    paint(painter, page);
    for (QTextBlock block = m_document->begin(); block.isValid(); block = block.next()) {
        const double top = m_document->documentLayout()->blockBoundingRect(block).top();
        if (int(top / textHeight) == page) picture.text += block.text().replace(u'\t', u' ') + u'\n';
    }
    return picture;
}

namespace {

/// Qt names a glyph by the first character that has it, and spaces are drawn like tabs: what is copied would
/// have tabs for spaces, and soft hyphens for hyphens. As many bytes as before.
void mendNames(QByteArray& pdf)
{
    for (qsizetype at = pdf.indexOf("beginbfrange"); at >= 0; at = pdf.indexOf("beginbfrange", at + 1)) {
        const qsizetype end = pdf.indexOf("endbfrange", at);
        bool list = false;
        int column = 0; // of a line: first and last glyph, then what they are
        for (qsizetype i = at; i < end; ++i) {
            const char c = pdf[i];
            if (c == '\n') column = 0;
            if (c == '[') list = true;
            if (c == ']') list = false;
            if (c != '<') continue;
            ++column;
            if (!list && column != 3) continue;
            const QByteArrayView name = QByteArrayView{pdf}.sliced(i + 1, 4);
            if (name == "0009" || name == "00A0") pdf.replace(i + 1, 4, "0020");
            if (name == "00AD") pdf.replace(i + 1, 4, "002D");
        }
    }
}

} // namespace

QByteArray HandoutPages::pdf() const
{
    QByteArray bytes;
    QBuffer buffer{&bytes};
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer{&buffer};
        writer.setResolution(dpi);
        writer.setTitle(m_title);
        writer.setCreator(u"Murmeli"_s);
        writer.setPageLayout({QPageSize{QPageSize::A4}, QPageLayout::Portrait, {}, QPageLayout::Millimeter});
        QPainter painter{&writer};
        for (int page = 0; page < m_count; ++page) {
            if (page > 0) writer.newPage();
            paint(painter, page);
        }
    }
    buffer.close();
    mendNames(bytes);
    return bytes;
}

} // namespace murmeli
