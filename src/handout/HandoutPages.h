#pragma once

#include "Handout.h"

#include <QByteArray>
#include <QImage>
#include <QStringList>

#include <memory>

class QTextDocument;

namespace murmeli {

/// A handout on pages of A4, laid out once for paper and screen. Needs QGuiApplication; one thread at a time.
class HandoutPages {
public:
    explicit HandoutPages(const Handout& handout);
    ~HandoutPages();
    Q_DISABLE_COPY_MOVE(HandoutPages)

    [[nodiscard]] int count() const { return m_count; }

    /// As a PDF whose text can be selected, searched and copied as it reads, with its fonts in it.
    [[nodiscard]] QByteArray pdf() const;

    struct Picture {
        QImage image;
        QString text; ///< what stands on the page
    };
    /// A page for the screen, so many pixels wide.
    [[nodiscard]] Picture picture(int page, int pixels) const;

    static constexpr double heightToWidth = 297.0 / 210.0;
    /// In the place of what no font can draw.
    static constexpr QChar standIn{0x25a1};

private:
    void layOut(const Handout& handout);
    void keepHeadings();
    void paint(QPainter& painter, int page) const;

    std::unique_ptr<QTextDocument> m_document;
    QString m_title;
    QString m_footer;
    QString m_family;
    QList<int> m_headings; ///< blocks
    int m_count = 0;
};

/// The text in a PDF that HandoutPages has made, title and all, as a reader extracts it; nothing when it
/// cannot be read. Any thread.
std::optional<QString> textInPdf(const QByteArray& pdf);

} // namespace murmeli
