#!/usr/bin/env python3
"""Whether doc/help.html answers every message of trouble that the program can show.

A message of trouble is a text that the log would colour as a warning or an error, one that is handed to a
box or to an error text, or one whose words say that something failed, was refused or is missing. It is
answered when the first column of one of the page's tables of messages quotes it, with dots for what the
program fills in. Prints a line for each that is not; run in the top folder of the project.
"""
import glob
import html
import re
import sys

SOURCES = ["acquisition/acquisitionlog.cpp", "client/*.cpp", "roi/*.cpp", "roi/*.ui", "ui/*.cpp",
           "ui/*.ui", "imaging/*.cpp", "output/*.cpp", "base/*.cpp"]

CALLS = re.compile(r"\bErrorText::|\b(warn|ask|fail)\(|MessageBox::\w+\(")
WORDS = re.compile(
    r"\b([Cc]annot|[Cc]ould not|not found|[Ii]nvalid|unable|timed out|too many|too small|longer than|larger than"
    r"|canceled|cut off|without an error|busy|missing|already|must be|are there|blank)\b"
    r"|\b(is|holds|are) no\b|\b(does|do|did) not\b|\bnot (a|present|match)\b|^No (?!JPX).*[a-z]"
    r"|no (frames returned|original)|\b(is|was) (empty|lost|not)\b|^the film shows|^(Another|Start the ROI) ")

# What sounds like trouble and needs no row, each with its reason.
NO_ANSWER = {
    "An acquisition is already running.": "the window disables Start while a run goes on",
    "Cadence must be greater than zero.": "the field takes no such value",
    "HelioviewerClient is already busy.": "the window does not ask twice at a time",
    "ERROR %1: %2": "the log line of a box that says the same",
    "WARNING %1: %2": "a film that is not whole; the reason is a text of its own",
    "not a regular file": "a reason within another message",
    "larger than %1 MB": "as above",
    "Session canceled.": "what the user asked for",
    "No frame downloaded yet.": "a place that is still empty",
    "Fast path: %1 dense AIA datasource(s) will use the requested %2 s cadence directly; full JPX "
    "archive scan skipped.": "a saving",
    "Cadence: dense-source fast path; direct sampling every %1 (full JPX scan skipped).": "as above",
    "<p><b>Cadence strategy:</b> quick probe unavailable; Orvik uses the requested cadence with normal "
    "validation.</p>": "the page of details says what follows from it",
    "Play video": "the title of a box",
    "Play latest video": "as above",
    "Orvik help": "as above",
}


def read(name):
    with open(name, encoding="utf-8") as file:
        return file.read()


def unescaped(literal):
    return literal.replace(r"\n", "\n").replace(r"\"", '"').replace("\\\\", "\\")


def form_texts(name):
    return [(html.unescape(text), "") for text in re.findall("<string>(.*?)</string>", read(name), re.DOTALL)]


def source_texts(name):
    """The literals of a source, neighbours joined, each with the statement that it stands in."""
    code = re.sub(r"^\s*(//|#include).*$", "", read(name), flags=re.MULTILINE)
    code = re.sub(r'"\s+"', "", code)
    texts = []

    def masked(literal):
        texts.append(unescaped(literal[1]))
        return f'"{len(texts) - 1}"'

    for statement in re.split("[;{}]", re.sub(r'"((?:[^"\\\n]|\\.)*)"', masked, code)):
        for number in re.findall(r'"(\d+)"', statement):
            yield texts[int(number)], statement


def log_rules():
    """What makes a line of the log a warning or an error, or neither, in the order of the program."""
    rules = re.findall(r'\{LineClass::(\w+), Place::(\w+), "([^"]*)"\}', read("base/loglineclass.cpp"))
    return [(line_class in ("Warning", "Error"),
             re.compile({"Start": "^{}", "Anywhere": "{}", "Whole": "^{}$"}[place].format(re.escape(word))))
            for line_class, place, word in rules]


def is_trouble(text, statement, rules):
    """Whether the user may ask what to do; a text of a form has no statement and is never logged."""
    line = text.strip().upper()
    handed = CALLS.search(statement) and "QMessageBox::Information" not in statement
    coloured = statement and next((bad for bad, rule in rules if rule.search(line)), False)
    return " " in line and bool(coloured or handed or WORDS.search(text))


def quoted_messages():
    """What the first column of the tables of messages quotes, as patterns of whole texts."""
    page = read("doc/help.html")
    tables = re.findall(r'<caption id="messages-.*?</caption>(.*?)</table>', page, re.DOTALL)
    for cell in re.findall(r"<tr><td>(.*?)</td>", "".join(tables), re.DOTALL):
        for quote in re.findall(r'<code class="msg">(.*?)</code>', cell, re.DOTALL):
            quote = " ".join(html.unescape(quote).split())
            if re.sub("^(ERROR|WARNING)|[\\s\u2026:.]", "", quote):  # else it would answer everything
                parts = [re.escape(part.strip()) for part in quote.split("\u2026")]
                yield re.compile(r"\s*" + ".*".join(parts).replace(r"\ ", r"\s+") + r"\s*", re.DOTALL)


def main():
    rules = log_rules()
    trouble = {}
    for name in sorted(name for pattern in SOURCES for name in glob.glob(pattern)):
        for text, statement in form_texts(name) if name.endswith(".ui") else source_texts(name):
            if name != "base/loglineclass.cpp" and is_trouble(text, statement, rules):
                trouble[text] = name
    quotes = list(quoted_messages())
    complaints = [f"{name}: no answer in doc/help.html: {text!r}"
                  for text, name in sorted(trouble.items())
                  if text not in NO_ANSWER and not any(quote.fullmatch(text) for quote in quotes)]
    complaints += [f"script/lib/help_answers.py: nothing says so any more: {text!r}"
                   for text in NO_ANSWER if text not in trouble]
    if len(rules) < 20 or len(trouble) < 80:
        complaints.append("script/lib/help_answers.py: the sources are not read any more")
    print("\n".join(complaints), end="\n" * bool(complaints))
    return bool(complaints)


sys.exit(main())
