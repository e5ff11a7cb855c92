"""How people promise, doubt, object and count, in Russian and English."""

from __future__ import annotations

import re
from dataclasses import dataclass

import scenarios_en
import scenarios_ru

CARDINAL_RU = (r"(?:од(?:ин|на|но|ного|ной)|дв(?:а|е|ух)|оба|обе|тр(?:и|[её]х)|четыр(?:е|[её]х)|пят[ьи]|шест[ьи]|"
               r"сем[ьи]|вос(?:емь|ьми)|девят[ьи]|десят(?:ь|и|ков|ок)|\w+надцат[ьи]|двадцат[ьи]|тридцат[ьи]|сорока?|\w+ьдесят|"
               r"девяност[оа]|ст[оа]|двести|двухсот|триста|четыреста|\w+ьсот|тысяч[аиу]?|миллион(?:а|ов)?|"
               r"миллиард(?:а|ов)?|полтора|полторы|половин[ауы]|треть|четверть)")
CARDINAL_EN = (r"(?:one|two|three|four|five|six|seven|eight|nine|ten|eleven|twelve|"
               r"(?:thir|four|fif|six|seven|eigh|nine)teen|twenty|thirty|forty|fifty|sixty|seventy|eighty|ninety|"
               r"hundreds?|thousands?|millions?|billions?|half|quarter|third|dozen)")
FIGURE = r"(?:\d+(?:[.,:]\d+)*(?: ?%)?|{word})"
UNIT = (r"(?:%|per cent|percent|кг|км|см|мм|м|ч|"
        r"(?!(?:and|the|per|out|for|from|или|для|что|при|это|как|так)\b)[^\W\d_]{3,})")


@dataclass(frozen=True)
class Ways:
    """How a language promises, doubts, objects and so on."""
    promise: re.Pattern
    hedge: re.Pattern
    against: re.Pattern
    settled: re.Pattern
    blocked: re.Pattern
    idea: re.Pattern
    good: re.Pattern
    bad: re.Pattern
    cause: re.Pattern
    agenda: re.Pattern
    no_time: re.Pattern
    aim: re.Pattern
    number: re.Pattern
    words: dict[str, str]


def some(*words: str) -> re.Pattern:
    """Finds words that begin so: an ending fits unless a pattern closes itself."""
    return re.compile(r"(?<!\w)(?:" + "|".join(words) + ")", re.IGNORECASE)


def figures(word: str, joint: str) -> re.Pattern:
    figure = FIGURE.format(word=word)
    return re.compile(rf"(?<![\w.,:-]){figure}(?:{joint}{figure})*(?: {UNIT})?(?!\w)", re.IGNORECASE)


RUSSIAN = Ways(
    promise=some(r"(?:с?дела|подготов|провер|присл|отправ|напи[шс]|позвон|состав|посчита|пересчита|собер|наброса|найд|"
                 r"договор|закаж|закуп|оформ|соглас|покаж|принес|настро|постав|сообщ|уточн|узна|спро[шс]|разошл|замер|"
                 r"нарис|довед|возьм|займ|запиш|смен|предлож|обзвон|перекро|перенес|внес|добав|исправ|закро|посмотр|"
                 r"утвер[дж]|распиш|развес|забронир|вылож|переда|приготов|организ)[а-яё]*[юу](?:сь)?(?!\w)",
                 r"беру на себя", r"за мной(?!\w)", r"обещаю(?!\w)", r"будет готов[аоы]?(?!\w)", r"успею",
                 r"постараюсь"),
    hedge=some(r"постара", r"попроб", r"наверн", r"возможно", r"может быть", r"если(?!\w)", r"скорее всего",
               r"надеюсь", r"примерно"),
    against=some(r"не соглас", r"против(?!\w)", r"возраж", r"не уверен", r"сомнева", r"зачем(?!\w)", r"нет[,.]",
                 r"боюсь", r"но(?!\w)", r"однако", r"а если", r"не думаю", r"дороже(?!\w)"),
    settled=some(r"реш(?:или|аем|ено|им)", r"договорил", r"давайте", r"тогда(?!\w)", r"хорошо[,.]", r"принято",
                 r"соглас", r"пробуем", r"останавливаемся", r"делаем так"),
    blocked=some(r"не хват", r"жд[её]м(?!\w)", r"мешает", r"блокир", r"нет доступа", r"слома", r"застр",
                 r"проблем", r"упира", r"без (?:этого|него|них)", r"срыва", r"задерж", r"не работает", r"не можем"),
    idea=some(r"предлага", r"предложени", r"иде[яюи](?!\w)", r"а что,? если", r"а если", r"давайте попробуем",
              r"можно было бы", r"что если"),
    good=some(r"зато", r"дешевле", r"быстрее", r"проще", r"удобн", r"поддерж", r"хватит(?!\w)", r"разумно",
              r"логично", r"согласен", r"согласна", r"экономи", r"хорошо(?!\w)"),
    bad=some(r"но(?!\w)", r"дорог", r"риск", r"сложн", r"не хват", r"боюсь", r"против(?!\w)", r"долго", r"нельзя",
             r"иначе(?!\w)", r"разрешени", r"кто будет"),
    cause=some(r"потому что", r"из-за", r"причин", r"дело (?:в|не)", r"оказ", r"на самом деле", r"значит",
               r"половин", r"чаще", r"поэтому", r"выходит"),
    agenda=some(r"на сегодня", r"повестк", r"обсудим", r"по порядку"),
    no_time=some(r"не успева", r"времени (?:уже )?нет", r"в следующий раз", r"переносим"),
    aim=re.compile(r"(?:,\s*)(чтобы\s[^.!?]+)", re.IGNORECASE),
    number=figures(CARDINAL_RU, r"(?: |-| на )"),
    words=scenarios_ru.LANGUAGE.words | {
        "cause": "причина", "observation": "наблюдение", "open": "Договорённости в разговоре нет.",
        "talk": "Больше всех говорит {name}",
        "talk_detail": "{count} из {all} реплик; вопросов за встречу: {questions}.",
        "asks": "Задаёт вопросы", "asks_why": "Вопросов больше, чем у других: {count}."},
)
ENGLISH = Ways(
    promise=some(r"I['’]?ll(?!\w)", r"I will(?!\w)", r"I['’]m going to", r"done by(?!\w)",
                 r"I can (?:have|send|do|take|move|make|bring)", r"leave it (?:to|with) me", r"I promise",
                 r"I['’]d take", r"on me(?!\w)"),
    hedge=some(r"try(?!\w)", r"maybe", r"probably", r"perhaps", r"if(?!\w)", r"might", r"hopefully",
               r"should be able"),
    against=some(r"disagree", r"not sure", r"against(?!\w)", r"but(?!\w)", r"honestly, no", r"no[,.]", r"I doubt",
                 r"I['’]d rather", r"however", r"careful", r"costs more", r"double the"),
    settled=some(r"let['’]?s(?!\w)", r"then(?!\w)", r"agreed", r"decided", r"good[,.]", r"fair", r"fine[,.]",
                 r"we['’]ll(?!\w)", r"it is\."),
    blocked=some(r"waiting (?:for|on)", r"blocked", r"stuck", r"can['’]?t(?!\w)", r"broken", r"missing",
                 r"no access", r"not enough", r"nobody (?:can|has)", r"delay", r"problem", r"too (?:late|old|few)",
                 r"without (?:it|that|them)"),
    idea=some(r"idea", r"suggest", r"propose", r"what if", r"how about", r"we could", r"why don['’]t we",
              r"let['’]s try", r"should(?!\w)"),
    good=some(r"good(?!\w)", r"cheaper", r"faster", r"easier", r"agree(?!\w)", r"makes sense", r"saves?(?!\w)",
              r"enough(?!\w)", r"helps?(?!\w)", r"exactly"),
    bad=some(r"but(?!\w)", r"expensive", r"risk", r"hard(?!\w)", r"costs?(?!\w)", r"slow", r"permission",
             r"too (?!\w*bad)", r"who (?:will|would)", r"trouble", r"another"),
    cause=some(r"because", r"turns out", r"the reason", r"actually", r"that['’]s why", r"the point is",
               r"so (?:that|they|we)", r"which means", r"most of", r"half (?:of|the)", r"every (?:time|second)",
               r"only when"),
    agenda=some(r"today we have", r"here is the list", r"in this order", r"agenda"),
    no_time=some(r"no time left", r"won['’]t manage", r"next time", r"we['’]ll move it"),
    aim=re.compile(r"(?:,\s*|\s)(so that\s[^.!?]+)", re.IGNORECASE),
    number=figures(CARDINAL_EN, r"(?: |-| and | in )"),
    words=scenarios_en.LANGUAGE.words | {
        "cause": "cause", "observation": "observation", "open": "The talk ends without an agreement on it.",
        "talk": "{name} talks most",
        "talk_detail": "{count} of {all} lines; questions in the meeting: {questions}.",
        "asks": "Asks the questions", "asks_why": "More questions than anybody else: {count}."},
)
