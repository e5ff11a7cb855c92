#include "LineHeight.h"

#include <QTextBlockFormat>
#include <QTextCursor>
#include <QTextDocument>

namespace murmeli {

QQuickTextDocument* LineHeight::document() const
{
    return qobject_cast<QQuickTextDocument*>(m_document.data());
}

void LineHeight::setDocument(QQuickTextDocument* document)
{
    if (document == m_document) return;
    m_document = document;
    if (document)
        connect(document->textDocument(), &QTextDocument::contentsChanged, this, &LineHeight::apply);
    apply();
    emit documentChanged();
}

void LineHeight::setPixels(qreal pixels)
{
    if (qFuzzyCompare(pixels, m_pixels)) return;
    m_pixels = pixels;
    apply();
    emit pixelsChanged();
}

void LineHeight::apply()
{
    if (!document() || m_pixels <= 0 || m_applying) return;
    m_applying = true; // a change of format is a change of content
    QTextCursor cursor{document()->textDocument()};
    cursor.select(QTextCursor::Document);
    QTextBlockFormat format;
    format.setLineHeight(m_pixels, QTextBlockFormat::FixedHeight);
    cursor.mergeBlockFormat(format);
    m_applying = false;
}

} // namespace murmeli
