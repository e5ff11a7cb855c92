#include "HandoutModel.h"

#include "HandoutText.h"
#include "base/Background.h"
#include "base/Files.h"
#include "localisation/Language.h"
#include "receipts/Receipts.h"
#include "service/OwnSettings.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qsizetype longestLetter = 1500; // characters; a longer text goes as a PDF

struct Remembered {
    HandoutPart part;
    PrefKey<bool> key;
};
constexpr std::array remembered = {
    Remembered{HandoutPart::Summary, {"handout_summary", true}},
    Remembered{HandoutPart::Decisions, {"handout_decisions", true}},
    Remembered{HandoutPart::Tasks, {"handout_action_items", true}},
    Remembered{HandoutPart::Steps, {"handout_next_steps", false}},
    Remembered{HandoutPart::Questions, {"handout_open_questions", true}},
    Remembered{HandoutPart::Risks, {"handout_risks", false}},
    Remembered{HandoutPart::Quotes, {"handout_quotes", false}},
    Remembered{HandoutPart::Transcript, {"handout_transcript", false}},
};

HandoutParts rememberedParts(const OwnSettings& settings)
{
    HandoutParts parts;
    for (const Remembered& one : remembered)
        parts.setFlag(one.part, settings.get(one.key));
    return parts;
}

/// Why a file could not be written; waits for the disk.
Message writingFailure(const QString& path, qint64 bytes, const QString& language)
{
    const QFileInfo folder{QFileInfo{path}.absolutePath()};
    const QFileInfo file{path};
    const char* reason = "desk.reason.other";
    if (!folder.isDir()) {
        reason = "desk.reason.folder";
    } else if (!folder.isWritable() || (file.exists() && !file.isFile())) {
        reason = "desk.reason.denied";
    } else if (const auto free = files::freeBytes(folder.filePath()); free && *free < bytes) {
        reason = "desk.reason.full";
    }
    return Message::of("desk.not_saved", Language::text(language, QString::fromLatin1(reason)));
}

} // namespace

struct HandoutModel::Desk {
    HandoutChoice choice;
    Handout handout;
    std::unique_ptr<HandoutPages> pages;
};

HandoutModel::HandoutModel(Ground ground, const Meeting& meeting, QObject* parent)
    : QObject(parent), m_ground(std::move(ground)), m_meeting(meeting), m_desk(std::make_shared<Desk>())
{
    m_paper.setMaxThreadCount(1);
    m_paper.setExpiryTimeout(-1); // the documents are its own
    m_choice.parts = rememberedParts(m_ground.settings);
    connect(&m_ground.settings, &OwnSettings::changed, this, [this] {
        const HandoutParts parts = rememberedParts(m_ground.settings);
        if (std::exchange(m_choice.parts, parts) != parts) make();
    });
    connect(&m_ground.language, &Language::changed, this, [this] { load(m_meeting); });
    load(meeting);
}

HandoutModel::~HandoutModel()
{
    // A document has timers, which end on the thread that has made it.
    m_paper.clear(); // whoever waits for it has gone, or goes
    startOn(m_paper, [desk = m_desk] { desk->pages.reset(); });
    m_paper.waitForDone();
}

void HandoutModel::load(const Meeting& meeting)
{
    m_meeting = meeting;
    const auto read = [meeting, files = m_ground.files, language = m_ground.language.current()] {
        return std::make_shared<const HandoutSource>(HandoutSource::read(meeting, files, language));
    };
    whenFinished(startOn(m_paper, read), m_load.renew(),
                 [this](const std::shared_ptr<const HandoutSource>& source) {
                     m_source = source;
                     make();
                 });
}

void HandoutModel::make()
{
    listRows();
    emit changed();
    if (!m_source) return;
    m_making = true;
    const auto work = [source = m_source, choice = m_choice, language = m_ground.language.current(),
                       desk = m_desk, newest = m_newest, own = ++*m_newest] {
        if (*newest != own) return Made{}; // nobody waits for this one any more
        desk->choice = choice;
        desk->handout = Handout::of(*source, choice, language);
        desk->pages = std::make_unique<HandoutPages>(desk->handout);
        return Made{.pages = desk->pages->count(),
                    .people = int(desk->handout.redaction.count()),
                    .hidden = choice.hideNames,
                    .first = desk->handout.redaction.first(),
                    .pdfName = desk->handout.fileName(u"pdf"_s),
                    .markdownName = desk->handout.fileName(u"md"_s)};
    };
    whenFinished(startOn(m_paper, work), m_make.renew(), [this](const Made& made) {
        m_making = false;
        m_made = made;
        ++m_edition;
        emit changed();
        if (const auto wish = std::exchange(m_wish, std::nullopt)) handOut(wish->way, wish->window);
    });
}

void HandoutModel::listRows()
{
    m_rows.clear();
    const QString language = m_ground.language.current();
    for (const HandoutPart part : allHandoutParts()) {
        const qsizetype count = m_source ? m_source->count(part) : 0;
        if (count == 0) continue;
        QString amount = QString::number(count);
        if (part == HandoutPart::Summary) amount.clear();
        if (part == HandoutPart::Transcript && m_meeting.durationMin)
            amount = Language::shortDuration(language, qint64(*m_meeting.durationMin * 60));
        m_rows.append({int(part), titleOf(part, language), amount, m_choice.parts.testFlag(part)});
    }
}

void HandoutModel::choose(int part, bool chosen)
{
    for (const Remembered& one : remembered) {
        if (int(one.part) != part) continue;
        say({});
        m_ground.settings.set(QString::fromLatin1(one.key.name), chosen); // which tells of it
    }
}

void HandoutModel::setHideNames(bool hide)
{
    if (std::exchange(m_choice.hideNames, hide) == hide) return;
    say({});
    make();
}

void HandoutModel::setHideNumbers(bool hide)
{
    if (std::exchange(m_choice.hideNumbers, hide) == hide) return;
    say({});
    make();
}

QString HandoutModel::example() const
{
    if (m_made.first.isEmpty()) return {};
    return m_made.first + u" → "_s + m_ground.language.t(u"desk.somebody"_s) + u" 1"_s;
}

bool HandoutModel::isReady() const { return m_source && !m_working && !m_making && m_made.pages > 0; }

void HandoutModel::say(const Message& message, bool failed)
{
    m_message = message;
    m_failed = failed;
    m_asked.reset();
    emit changed();
}

void HandoutModel::handOut(Way way, QWindow* window)
{
    if (m_working) return;
    if (!m_source || m_making) {
        m_wish = Wish{way, window};
        return;
    }
    if (m_rows.isEmpty()) return say(Message::of("desk.unreadable"), true);
    if (std::ranges::none_of(m_rows, &HandoutRow::chosen)) return say(Message::of("desk.nothing"), true);
    const bool said =
        m_choice.parts.testFlag(HandoutPart::Transcript) && m_source->count(HandoutPart::Transcript) > 0;
    if (said && m_choice.hideNames && m_asked != way) {
        say({});
        m_asked = way;
        emit changed();
        return;
    }
    say({});
    if (way == Way::Clipboard || way == Way::Mail) return produce(way, {});
    QString folder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    if (!QFileInfo{folder}.isDir()) folder = m_ground.home;
    const bool pdf = way == Way::Pdf;
    m_ground.desktop.askWhereToSave(
        {.title = m_ground.language.t(u"desk.dialog"_s),
         .suggested = folder + u'/' + (pdf ? m_made.pdfName : m_made.markdownName),
         .kind = pdf ? u"PDF (*.pdf)"_s : u"Markdown (*.md)"_s,
         .suffix = pdf ? u"pdf"_s : u"md"_s},
        window, this, [this, way](const QString& path) { produce(way, path); });
}

void HandoutModel::answer(bool yes, QWindow* window)
{
    if (!m_asked) return;
    const Way way = *m_asked;
    if (yes) {
        handOut(way, window);
    } else {
        say({});
    }
}

void HandoutModel::produce(Way way, const QString& path)
{
    m_working = true;
    say(Message::of("desk.working"));
    if (way == Way::Mail && !m_folder) {
        m_folder = std::make_unique<QTemporaryDir>();
        m_folder->setAutoRemove(false); // who got the file may still be reading it when we are gone
    }
    const QString folder = m_folder ? m_folder->path() : QString{};
    const auto work = [desk = m_desk, way, path, folder, language = m_ground.language.current()] {
        const Handout& handout = desk->handout;
        Output output;
        output.title = handout.title;
        output.parts = Handout::receiptParts(desk->choice);
        output.plain = handoutText::plain(handout);
        output.html = handoutText::html(handout);
        output.markdown = handoutText::markdown(handout);
        const bool letter = way == Way::Mail && output.plain.size() <= longestLetter;
        // What is on the clipboard says the same in all of its forms.
        QString readBack = handout.title + u'\n' + output.plain;
        if (way == Way::Markdown) readBack += output.markdown;
        QByteArray bytes;
        if (way == Way::Markdown) bytes = output.markdown.toUtf8();
        if (way == Way::Pdf || (way == Way::Mail && !letter)) {
            bytes = desk->pages->pdf();
            const auto text = textInPdf(bytes);
            if (!text) {
                output.failure = writingFailure(path, 0, language);
                return output;
            }
            readBack += *text;
        }
        output.left = handout.nameLeftIn(readBack);
        output.bytes = bytes.isEmpty() ? output.plain.toUtf8().size() : bytes.size();
        if (!output.left.isEmpty() || bytes.isEmpty()) return output;
        output.path = way == Way::Mail ? folder + u'/' + handout.fileName(u"pdf"_s) : path;
        if (!files::writeAtomic(output.path, bytes))
            output.failure = writingFailure(output.path, bytes.size(), language);
        return output;
    };
    whenFinished(startOn(m_paper, work), this, [this, way](const Output& output) {
        m_working = false;
        if (!output.left.isEmpty()) return say(Message::of("desk.left_over", output.left), true);
        if (!output.failure.isEmpty()) return say(output.failure, true);
        send(way, output);
    });
}

void HandoutModel::send(Way way, const Output& output)
{
    const QFileInfo file{output.path};
    switch (way) {
    case Way::Clipboard:
        m_ground.desktop.copy({.text = output.plain, .html = output.html, .markdown = output.markdown});
        note(output, u"clipboard"_s, u"clipboard"_s, output.bytes);
        return say(Message::of("desk.copied"));
    case Way::Markdown:
    case Way::Pdf:
        note(output, u"file"_s, file.dir().dirName(), output.bytes);
        return say(Message::of("desk.saved", file.fileName()));
    case Way::Mail:
        m_ground.desktop.askForMailProgram(this, [this, output](bool there) {
            if (there) return mail(output);
            m_ground.desktop.copy({.text = output.plain, .html = output.html, .markdown = output.markdown});
            note(output, u"clipboard"_s, u"clipboard"_s, output.plain.toUtf8().size());
            say(Message::of("desk.no_mail"));
        });
    }
}

void HandoutModel::mail(const Output& output)
{
    const bool attached = !output.path.isEmpty();
    m_ground.desktop.mail(
        {.subject = output.title, .text = attached ? QString{} : output.plain, .file = output.path});
    note(output, u"mail"_s, u"mail"_s, output.bytes);
    say(attached ? Message::of("desk.mailed_text_kept") : Message::of("desk.mailed"));
}

void HandoutModel::note(const Output& output, const QString& kind, const QString& to, qint64 bytes)
{
    Receipt receipt = m_ground.receipts.begun();
    receipt.stem = m_meeting.id;
    receipt.kind = kind;
    receipt.to = to;
    receipt.bytes = bytes;
    receipt.parts = output.parts;
    receipt.result.clear(); // nobody answers
    m_ground.receipts.note(receipt);
}

void HandoutModel::draw(int page, int pixels, QObject* context,
                        std::function<void(const HandoutPages::Picture&)> done)
{
    const auto work = [desk = m_desk, page, pixels] {
        return desk->pages ? desk->pages->picture(page, pixels) : HandoutPages::Picture{};
    };
    whenFinished(startOn(m_paper, work), context, std::move(done));
}

} // namespace murmeli
