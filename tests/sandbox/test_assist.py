import json
import re
import time
import unittest
from datetime import datetime

from sandbox_case import STAMPED, wait_for
from web_case import ANNA, WebCase

import accounts
import analysis
import dates
import edits
import meeting_files

RUSSIAN = (
    ("tldr", "Договорились о пилоте на складе."),
    ("decisions", "Договор подписывает Иванов."),
    ("decisions", "Бюджет — 5 млн рублей, без НДС."),
    ("action_items", "Подготовить смету — Анна Крылова"),
    ("action_items", "Иванову позвонить поставщику к пятнице"),
    ("action_items", "Отправить отчёт заказчику до 15 декабря."),
    ("next_steps", "Вернуться к теме доставки на дом."),
    ("open_questions", "Кто платит за «Северный склад»?"),
    ("risks", "Поставщик может, наверное, задержать плитку."),
)
ENGLISH = (
    ("tldr", "We agreed on a pilot at the warehouse."),
    ("decisions", "Smith signs the contract."),
    ("decisions", "The budget is 5 million, without tax."),
    ("action_items", "Prepare the estimate — Anna Reed"),
    ("action_items", "Call the supplier by Friday"),
    ("action_items", "Send the report to the customer."),
    ("open_questions", "Who owns the archive?"),
    ("risks", "The supplier may perhaps delay the tiles."),
)


def items(rows) -> list[dict]:
    counted: dict[str, int] = {}
    made = []
    for section, text in rows:
        made.append({"section": section, "index": counted.setdefault(section, 0), "text": text})
        counted[section] += 1
    return made


class Remarks(unittest.TestCase):
    def check(self, rows, cases):
        for remark, place, text in cases:
            with self.subTest(remark):
                section, _, index = place.partition(" ")
                self.assertEqual(edits.edit(remark, items(rows)), {
                    "found": True, "section": section, "index": int(index or 0), "text": text})

    def test_words_are_replaced(self):
        self.check(RUSSIAN, (
            ("замени Иванова на Петрова", "decisions 0", "Договор подписывает Петров."),
            ("Поменяй, пожалуйста, «смету» на «расчёт».", "action_items 0", "Подготовить расчёт — Анна Крылова"),
            ("вместо Иванова должно быть Сидоренко", "decisions 0", "Договор подписывает Сидоренко."),
            ("Вместо 5 млн — 7 млн", "decisions 1", "Бюджет — 7 млн рублей, без НДС."),
            ("бюджет 7 млн, а не 5 млн", "decisions 1", "Бюджет — 7 млн рублей, без НДС."),
            ("не Анна Крылова, а Ольга Белецкая", "action_items 0", "Подготовить смету — Ольга Белецкая"),
            ("исправь слово плитку на паркет", "risks 0", "Поставщик может, наверное, задержать паркет."),
            ("замени доставку на дом на самовывоз", "next_steps 0", "Вернуться к теме самовывоз."),
            ("поставщика замени на подрядчика", "action_items 1", "Иванову позвонить подрядчику к пятнице"),
            ("отчет -> доклад", "action_items 2", "Отправить доклад заказчику до 15 декабря."),
            ("напиши паркет вместо плитки", "risks 0", "Поставщик может, наверное, задержать паркет."),
            ("северный склад поменяйте на Южный", "open_questions 0", "Кто платит за «Южный»?"),
            ("не пятница, а вторник", "action_items 1", "Иванову позвонить поставщику ко вторнику"),
        ))
        self.check(ENGLISH, (
            ("replace Smith with Jones", "decisions 0", "Jones signs the contract."),
            ("Please change the estimate to the offer.", "action_items 0", "Prepare the offer — Anna Reed"),
            ("it's Jones, not Smith", "decisions 0", "Jones signs the contract."),
            ("not Smith but Jones", "decisions 0", "Jones signs the contract."),
            ("instead of the report write the letter", "action_items 2", "Send the letter to the customer."),
            ("suppliers → vendors", "action_items 1", "Call the vendor by Friday"),
            ("write archive instead of warehouse", "tldr", "We agreed on a pilot at the archive."),
            ("Anna Reed should be Grace Okafor", "action_items 0", "Prepare the estimate — Grace Okafor"),
            ("the budget is 7 million, not 5 million", "decisions 1", "The budget is 7 million, without tax."),
        ))

    def test_words_are_removed(self):
        self.check(RUSSIAN, (
            ("удали слово «наверное»", "risks 0", "Поставщик может задержать плитку."),
            ("убери без НДС", "decisions 1", "Бюджет — 5 млн рублей."),
            ("убери упоминание о НДС", "decisions 1", "Бюджет — 5 млн рублей."),
            ("вычеркни Иванову из второй задачи", "action_items 1", "Позвонить поставщику к пятнице"),
        ))
        self.check(ENGLISH, (
            ("remove the word perhaps", "risks 0", "The supplier may delay the tiles."),
            ("delete 'without tax'", "decisions 1", "The budget is 5 million."),
        ))

    def test_deadlines_are_moved(self):
        self.check(RUSSIAN, (
            ("срок — среда", "action_items 1", "Иванову позвонить поставщику к среде"),
            ("срок по смете: завтра", "action_items 0", "Подготовить смету — Анна Крылова, срок — завтра"),
            ("срок сметы до пятницы", "action_items 0", "Подготовить смету — Анна Крылова, срок — до пятницы"),
            ("в третьей задаче срок — вторник", "action_items 2", "Отправить отчёт заказчику до вторника."),
            ("перенеси отчёт на 20 декабря", "action_items 2", "Отправить отчёт заказчику до 20 декабря."),
            ("отчёт сдаём в четверг, а не 15 декабря", "action_items 2", "Отправить отчёт заказчику до четверга."),
            ("решение 1: срок — конец недели", "decisions 0", "Договор подписывает Иванов, срок — конец недели."),
        ))
        self.check(ENGLISH, (
            ("change the deadline to Monday", "action_items 1", "Call the supplier by Monday"),
            ("the deadline for the report is next Friday", "action_items 2",
             "Send the report to the customer, due next Friday."),
            ("move the supplier call to Tuesday", "action_items 1", "Call the supplier by Tuesday"),
            ("due tomorrow in the first task", "action_items 0", "Prepare the estimate — Anna Reed, due tomorrow"),
        ))
        first = [item for item in items(ENGLISH) if "Friday" not in item["text"]]
        self.assertEqual(edits.edit("deadline: 5 December", first)["text"],
                         "Prepare the estimate — Anna Reed, due 5 December")

    def test_a_place_that_is_named_counts(self):
        rows = [(section, "Звонит Орлов") for section in
                ("tldr", "decisions", "decisions", "action_items", "next_steps", "open_questions", "risks", "risks")]
        for place, section, index in (
                ("во втором решении", "decisions", 1), ("решение 1:", "decisions", 0), ("в задаче", "action_items", 0),
                ("в первом следующем шаге", "next_steps", 0), ("in the first open question", "open_questions", 0),
                ("в последнем риске", "risks", 1), ("in the second risk", "risks", 1), ("in risk #1", "risks", 0),
                ("в итоге", "tldr", 0), ("in the summary", "tldr", 0), ("in the last action item", "action_items", 0)):
            for remark in (f"{place} замени Орлова на Пака", f"Replace Орлов with Пак {place.rstrip(':')}"):
                with self.subTest(remark):
                    found = edits.edit(remark, items(rows))
                    self.assertEqual((found.get("section"), found.get("index")), (section, index))

    def test_what_is_not_understood_changes_nothing(self):
        russian = ("сделай красивее", "замени Козлова на Петрова", "удали третью задачу", "замени", "срок", "убери",
                   "в девятой задаче замени смету на план", "замени Иванова на Иванова", "«»", "не, а", "→",
                   "замени Ивана на Петра в десятом риске")
        english = ("make it nicer", "replace Brown with Jones", "remove", "in the ninth task remove the report",
                   "change the deadline to something", "replace 50 with 7")
        for rows, remarks in ((RUSSIAN, russian), (ENGLISH, english)):
            for remark in remarks:
                with self.subTest(remark):
                    self.assertEqual(edits.edit(remark, items(rows)), {"found": False})
        self.assertEqual(edits.edit("срок — пятница", []), {"found": False})
        self.assertEqual(edits.edit("удали смета", [{"section": "risks", "index": 0, "text": "«Смета»."}]),
                         {"found": False})

    def test_days(self):
        for text, day, preposition in (
                ("к 3 марта 2026 года", "3 марта 2026 года", "к"), ("на 05.12 в десять", "05.12", "на"),
                ("сдать через две недели", "через две недели", ""), ("до конца месяца", "конца месяца", "до"),
                ("by the end of the week", "the end of the week", "by"), ("on May 5th, please", "May 5th", "on"),
                ("1.5 процента", None, None), ("Маркус и среднее", None, None), ("по средам", None, None)):
            with self.subTest(text):
                found = dates.find(text)
                self.assertEqual(found and (text[found.start:found.end], found.preposition),
                                 day and (day, preposition))


def transcript_of(meeting) -> str:
    return "\n".join(f"{turn.stamp} {turn.speaker}: {turn.text}" for turn in meeting.turns)


def seconds(stamp: str) -> int:
    hours, minutes, rest = map(int, STAMPED.fullmatch(stamp).groups())
    return hours * 3600 + minutes * 60 + rest


def stamps_in(value) -> list[str]:
    return re.findall(r"\[\d\d:\d\d:\d\d\]", json.dumps(value))


class Reports(unittest.TestCase):
    def test_everything_comes_from_the_transcript(self):
        at = datetime(2026, 3, 4, 10).astimezone()
        filled, between = {}, 0
        for number in range(1, 19):
            meeting = meeting_files.recorded_meeting(2, number, at)
            text = transcript_of(meeting)
            lines = {turn.stamp: turn for turn in meeting.turns}
            report = analysis.analyse(text)
            with self.subTest(meeting.title):
                stamps = stamps_in(report)
                first, last = (seconds(meeting.turns[place].stamp) for place in (0, -1))
                self.assertTrue(all(first <= seconds(stamp) <= last for stamp in stamps))
                between += sum(stamp not in lines for stamp in stamps)
                for commitment in report["commitments"]:
                    said = lines[commitment["at"]]
                    self.assertEqual((commitment["who"], commitment["quote"]), (said.speaker, said.text))
                    self.assertIn(commitment["firmness"], ("твёрдое", "мягкое"))
                    self.assertIn(commitment["due"] or "", said.text)
                for dispute in report["disagreements"]:
                    self.assertEqual(len({side["who"] for side in dispute["sides"]}), 2)
                    for side in dispute["sides"]:
                        self.assertEqual(lines[side["at"]].speaker, side["who"])
                        self.assertIn(side["position"], lines[side["at"]].text)
                for one in report["numbers"]:
                    self.assertIn(one["value"], lines[one["at"]].text)
                for blocker in report["blockers"]:
                    self.assertIn(blocker, text)
                for concept in report["concepts"]:
                    self.assertIn(concept["idea"], lines[concept["at"]].text)
                    for reason in concept["pros"] + concept["cons"]:
                        self.assertIn(reason, text)
                self.assertEqual(len(report["roles"]), len({role["who"] for role in report["roles"]}))
                for role in report["roles"]:
                    self.assertEqual(lines[role["at"]].speaker, role["who"])
                for topic in report["agenda_coverage"]:
                    self.assertIn(topic["status"], ("пройдена полностью", "частично", "не дошли"))
                    self.assertIn(topic["topic"].lower(), text.lower())
                    self.assertIn(topic["at"], lines)
                following = dict(zip(lines, list(lines)[1:]))
                for insight in report["insights"]:
                    for stamp in insight["at"]:
                        if stamp not in lines:
                            opened = insight["at"][0]
                            self.assertLess(seconds(opened), seconds(stamp))
                            self.assertLess(seconds(stamp), seconds(following[opened]))
                titles = " ".join(insight["kind"] for insight in report["insights"])
                self.assertEqual(bool(re.search("[а-я]", titles)), meeting.language.code == "ru")
                self.assertEqual(analysis.analyse(text), report)
            for name, value in report.items():
                filled[name] = filled.get(name, 0) + bool(value)
        self.assertGreater(between, 5)
        # A section that stays empty as a rule would not be worth looking at.
        self.assertEqual({name for name, count in filled.items() if count < 9}, set())

    def test_what_words_give_away(self):
        report = analysis.analyse("\n".join((
            "[00:00:01] Вера Лис: Повестка такая: смета; ремонт; отпуск.",
            "[00:00:20] Вера Лис: Смета. Хватит ли нам двухсот тысяч рублей на всё?",
            "[00:00:40] Олег Дуб: Я не согласен, что этого хватит. Ждём цены от завода.",
            "[00:01:00] Вера Лис: Давайте спросим двоих.",
            "[00:01:20] Олег Дуб: Постараюсь и пришлю расчёт к среде, чтобы все успели прочесть.",
            "[00:01:50] Вера Лис: Теперь ремонт. Предлагаю стены красить самим.",
            "[00:02:10] Олег Дуб: Выйдет дешевле.",
            "[00:02:20] Вера Лис: Не успеваем: отпуск. В следующий раз.",
            "не строка", "[00:99:00] Никто: Пришлю к среде.", "")))
        [promise] = report["commitments"]
        self.assertEqual((promise["who"], promise["due"], promise["firmness"], promise["definition_of_done"]),
                         ("Олег Дуб", "к среде", "мягкое", "чтобы все успели прочесть"))
        [dispute] = report["disagreements"]
        self.assertEqual([side["at"] for side in dispute["sides"]], ["[00:00:20]", "[00:00:40]"])
        self.assertEqual((dispute["topic"], dispute["outcome"]), ("Смета", "Давайте спросим двоих."))
        self.assertEqual(report["blockers"], ["Ждём цены от завода."])
        self.assertEqual([topic["status"] for topic in report["agenda_coverage"]],
                         ["пройдена полностью", "частично", "не дошли"])
        self.assertEqual([(one["idea"], one["pros"], one["cons"]) for one in report["concepts"]],
                         [("Предлагаю стены красить самим", ["Выйдет дешевле."], [])])

    def test_what_has_no_lines(self):
        for text in ("", "\n\n", "просто текст", "[00:00:01] без двоеточия"):
            self.assertEqual([value for value in analysis.analyse(text).values() if value], [], text)


class Serving(WebCase):
    def bearer(self, web) -> dict:
        return {"Authorization": f"Bearer {web.token(ANNA)}"}

    def test_both_answers(self):
        web = self.web("--assist-seconds", "0")
        reply = web.ask("POST", "/api/assist/edit", json.dumps(
            {"remark": "replace Smith with Jones", "items": items(ENGLISH)}), self.bearer(web))
        self.assertEqual((reply.status, reply.json()), (200, {
            "found": True, "section": "decisions", "index": 0, "text": "Jones signs the contract."}))
        transcript = "[00:00:05] Anna: I'll send the plan by Friday."
        reply = web.ask("POST", "/api/assist/report", json.dumps(
            {"transcript": transcript, "meeting_date": "2026-03-04", "duration_min": 12.5}), self.bearer(web))
        report = reply.json()
        self.assertEqual((reply.status, report["commitments"][0]["quote"]), (200, "I'll send the plan by Friday."))
        self.assertIn(b'"big": 12345678901234567890', reply.body)
        self.assertEqual(report["meeting"], {"date": "2026-03-04", "duration_min": 12.5})

    def test_who_and_what_is_refused(self):
        web = self.web("--assist-seconds", "3600")
        edit, report = "/api/assist/edit", "/api/assist/report"
        good = self.bearer(web)
        expired = {"Authorization": f"Bearer {web.token(ANNA, expires_in=-1)}"}
        fine = {"remark": "x", "items": []}
        told = {"transcript": "", "meeting_date": "", "duration_min": 1}
        cases = [(path, headers, body, 401) for path, body in ((edit, fine), (report, told))
                 for headers in ({}, expired, {"Authorization": "Bearer x"},
                                 {"Authorization": f"Bearer {accounts.ANONYMOUS_KEY}"},
                                 {"apikey": accounts.ANONYMOUS_KEY})]
        cases += [(edit, good, body, 400) for body in (
            [], "x", fine | {"remark": " "}, fine | {"remark": 7}, fine | {"remark": "x" * 2001}, fine | {"items": {}},
            fine | {"items": [{"section": "risks", "index": "0", "text": ""}]},
            fine | {"items": [{"section": "risks", "index": True, "text": ""}]}, {"items": []})]
        cases += [(report, good, told | change, 400) for change in (
            {"transcript": None}, {"meeting_date": 5}, {"duration_min": "1"}, {"duration_min": True})]
        cases.append(("/api/assist/poem", good, {}, 404))
        for path, headers, body, status in cases:
            with self.subTest(path, body=str(body)[:60], headers=list(headers)):
                reply = web.ask("POST", path, json.dumps(body), headers)
                self.assertEqual(reply.status, status)
                self.assertTrue(reply.json()["message"])
        self.assertEqual(web.get(edit, **good).status, 405)

    def test_it_takes_its_time_and_has_faults(self):
        web = self.web("--assist-seconds", "0.2")
        spent = {}
        for path, body in (("edit", {"remark": "x", "items": []}),
                           ("report", {"transcript": "", "meeting_date": "", "duration_min": 1})):
            headers, before = self.bearer(web), time.monotonic()
            self.assertEqual(web.ask("POST", f"/api/assist/{path}", json.dumps(body), headers).status, 200)
            spent[path] = time.monotonic() - before
            web.control("faults", path=f"/api/assist/{path}", fault="status=503")
            self.assertEqual(web.ask("POST", f"/api/assist/{path}", json.dumps(body), headers).status, 503)
        self.assertGreaterEqual(spent["edit"], 0.2)
        self.assertGreaterEqual(spent["report"], 0.6)

    def test_the_end_waits_for_no_answer(self):
        web = self.web("--assist-seconds", "3600")
        connection = web.connection()
        self.addCleanup(connection.close)
        connection.request("POST", "/api/assist/edit", json.dumps({"remark": "x", "items": []}), self.bearer(web))
        wait_for(lambda: any(one["path"] == "/api/assist/edit" for one in web.shown("requests")), "the request")
        before = time.monotonic()
        self.assertEqual(web.end(), 0)
        self.assertLess(time.monotonic() - before, 2)


if __name__ == "__main__":
    unittest.main()
