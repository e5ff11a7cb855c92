"""The frame and the look that all pages share; each is one file without anything to fetch."""

from __future__ import annotations

from html import escape

STYLE = """
:root { color-scheme: light dark; --ink: #17181f; --soft: #565966; --page: #f1f1f5; --card: #fff;
  --line: #12131e1f; --field: #f5f5f8; --link: #5a38e6; --bad: #c9283a; --good: #0b7a52; }
@media (prefers-color-scheme: dark) { :root { --ink: #f3f4f8; --soft: #a9acba; --page: #121318;
  --card: #191a21; --line: #ffffff1c; --field: #22242d; --link: #ae9dff; --bad: #ff8f99; --good: #57e3ae; } }
* { box-sizing: border-box; }
body { margin: 0; padding: 6vh 16px 48px; background: var(--page); color: var(--ink);
  font: 15px/1.5 Inter, system-ui, sans-serif; }
main { max-width: 400px; margin: 0 auto; padding: 28px 32px 32px; background: var(--card);
  border: 1px solid var(--line); border-radius: 18px; }
main.wide { max-width: 900px; }
header { display: flex; align-items: center; gap: 10px; margin-bottom: 20px; font-weight: 600; }
.orb { width: 26px; height: 26px; border-radius: 50%;
  background: radial-gradient(circle at 32% 28%, #22d3ee, #3b82f6 45%, #7c5cff 80%); }
.note { margin-left: auto; padding: 2px 10px; border: 1px dashed var(--soft); border-radius: 99px;
  color: var(--soft); font-size: 12px; font-weight: 400; }
h1 { margin: 0 0 6px; font-size: 22px; line-height: 1.25; }
h2 { margin: 30px 0 8px; font-size: 16px; }
p { margin: 0 0 14px; color: var(--soft); }
a { color: var(--link); }
code { font: 13px/1.45 ui-monospace, monospace; overflow-wrap: anywhere; }
label { display: block; margin: 14px 0 4px; font-size: 13px; color: var(--soft); }
input, select, textarea { width: 100%; padding: 9px 12px; color: inherit; background: var(--field);
  border: 1px solid var(--line); border-radius: 10px; font: inherit; }
textarea { resize: vertical; font: 12px/1.45 ui-monospace, monospace; overflow-wrap: anywhere; }
input:focus-visible, select:focus-visible, textarea:focus-visible, button:focus-visible, a:focus-visible {
  outline: 2px solid #7c5cff; outline-offset: 2px; }
button { padding: 9px 16px; border: 0; border-radius: 10px; font: inherit; font-weight: 600; cursor: pointer;
  color: var(--ink); background: var(--field); box-shadow: inset 0 0 0 1px var(--line); }
textarea + button { margin-top: 10px; }
button.main { width: 100%; margin-top: 20px; color: #fff; box-shadow: none;
  background: linear-gradient(90deg, #6f50f2, #4468e6); }
.bad { color: var(--bad); } .good { color: var(--good); }
.hint { margin: 22px 0 0; padding-top: 16px; border-top: 1px solid var(--line); font-size: 13px; }
.row { display: flex; flex-wrap: wrap; gap: 8px; align-items: end; margin-bottom: 8px; }
.row > label { flex: 1 1 130px; margin: 0; } .row input, .row select, .row textarea { padding: 7px 9px; }
table { width: 100%; border-collapse: collapse; font-size: 13px; }
td, th { padding: 5px 8px 5px 0; text-align: left; vertical-align: top; border-bottom: 1px solid var(--line); }
th { color: var(--soft); font-weight: 500; }
"""


def frame(title: str, body: str, language: str = "en", note: str = "sandbox", wide: bool = False) -> str:
    """`body` is HTML already; everything else is plain text."""
    return (f'<!doctype html><html lang="{language}"><head><meta charset="utf-8">'
            '<meta name="viewport" content="width=device-width, initial-scale=1"><link rel="icon" href="data:,">'
            f"<title>{escape(title)}</title><style>{STYLE}</style></head>"
            f'<body><main{" class=wide" if wide else ""}><header><span class="orb"></span>Murmeli'
            f'<span class="note">{escape(note)}</span></header>{body}</main></body></html>')


def language_of(accepted: str) -> str:
    """The one of our two languages that a browser likes better."""
    liked = {}
    for item in accepted.split(","):
        name, _, weight = item.partition(";q=")
        try:
            liked.setdefault(name.strip().lower()[:2], float(weight or 1))
        except ValueError:
            continue
    return "en" if liked.get("en", 0) > liked.get("ru", 0) else "ru"
