#include "Claims.h"

#include "localisation/Language.h"

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

QStringList present(QStringList parts)
{
    parts.removeIf([](const QString& part) { return part.trimmed().isEmpty(); });
    return parts;
}

/// Letters as one sign each, however the model put them together.
QString composed(const QString& text) { return text.normalized(QString::NormalizationForm_C); }

QString beside(const QStringList& parts) { return present(parts).join(u" · "_s); }

/// The lines of a claim; a copy ends with its stamps.
QStringList worded(QStringList lines, const QStringList& stamps, Wording wording)
{
    if (wording == Wording::Copied) lines.append(stamps.join(u' '));
    return present(lines);
}

QString labelled(const QString& language, const QString& key, const QString& text)
{
    return text.isEmpty() ? QString{} : Language::text(language, key, text);
}

} // namespace

QStringList Blocker::words(const QString& /*language*/, Wording /*wording*/) const { return present({what}); }

QStringList Insight::stamps() const { return present(at); }

QStringList Insight::words(const QString& /*language*/, Wording wording) const
{
    return worded({title, detail}, stamps(), wording);
}

bool Commitment::isFirm() const
{
    const QString lower = composed(firmness).toLower();
    return lower.startsWith(u"твёрд"_s) || lower.startsWith(u"тверд"_s);
}

QStringList Commitment::stamps() const { return present({at}); }

QStringList Commitment::words(const QString& language, Wording wording) const
{
    QStringList lines{beside({who, due}), what, quote, labelled(language, u"report.dod"_s, definitionOfDone)};
    if (wording == Wording::Spoken)
        lines.append(Language::text(language, isFirm() ? u"report.firm"_s : u"report.soft"_s));
    return worded(lines, stamps(), wording);
}

QStringList Disagreement::stamps() const
{
    QStringList result;
    for (const DisagreementSide& side : sides)
        result.append(side.at);
    return present(result);
}

QStringList Disagreement::words(const QString& language, Wording wording) const
{
    QStringList lines{topic};
    for (const DisagreementSide& side : sides) {
        const QString said = present({side.who, side.position}).join(u": "_s);
        lines.append(wording == Wording::Copied ? present({said, side.at}).join(u' ') : said);
    }
    lines.append(labelled(language, u"report.outcome"_s, outcome));
    return present(lines);
}

// The service writes these in lower case; another case is another word to it.
bool AgendaItem::isDone() const { return composed(status).startsWith(u"пройден"_s); }
bool AgendaItem::isPartial() const { return composed(status).startsWith(u"частич"_s); }

QStringList AgendaItem::stamps() const { return present({at}); }

QStringList AgendaItem::words(const QString& /*language*/, Wording wording) const
{
    return worded({beside({topic, status})}, stamps(), wording);
}

QStringList MeetingNumber::stamps() const { return present({at}); }

QStringList MeetingNumber::words(const QString& /*language*/, Wording wording) const
{
    return worded({beside({metric, value}), note}, stamps(), wording);
}

QStringList Concept::stamps() const { return present({at}); }

QStringList Concept::words(const QString& /*language*/, Wording wording) const
{
    QStringList lines{idea};
    for (const QString& pro : pros)
        lines.append(u"+ "_s + pro);
    for (const QString& con : cons)
        lines.append(u"− "_s + con);
    return worded(lines, stamps(), wording);
}

QStringList MeetingRole::stamps() const { return present({at}); }

QStringList MeetingRole::words(const QString& /*language*/, Wording wording) const
{
    return worded({beside({who, role}), evidence}, stamps(), wording);
}

} // namespace murmeli
