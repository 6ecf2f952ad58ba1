#!/usr/bin/env python3
"""Whether doc/help.html says what the program says, and is whole in itself.

Prints a line for each complaint; run in the top folder of the project.
"""
import glob
import html
import re
import sys
from configparser import ConfigParser

ROOMS = ["base", "client", "acquisition", "imaging", "output", "roi", "ui"]
complaints = []


def read(name):
    with open(name, encoding="utf-8") as file:
        return file.read()


def found(pattern, text):
    return re.findall(pattern, text, re.DOTALL)


def plain(markup):
    return " ".join(html.unescape(re.sub(r"<[^>]*>", " ", markup)).split())


def expect(holds, complaint):
    if not holds:
        complaints.append(complaint)


def program_texts():
    """Every text of the forms, less what only a screen reader says, and of the sources, neighbouring
    literals joined."""
    texts = set()
    for room in ROOMS:
        for name in glob.glob(room + "/*.ui"):
            spoken = r'name="accessible\w+">\s*<string>[^<]*</string>'
            texts.update(map(html.unescape, found("<string>(.*?)</string>",
                                                  re.sub(spoken, "", read(name)))))
        for name in glob.glob(room + "/*.cpp"):
            joined = re.sub(r'"\s+"', "", read(name))
            texts.update(found(r'"((?:[^"\\\n]|\\.)*)"', joined))
    return texts


def holds(text, message):
    """Whether the parts of a message between its dots stand in a text, in their order."""
    parts = [re.escape(part.strip()) for part in message.split("\u2026")]
    return re.search(".*".join(parts), text, re.DOTALL) is not None


def defaults(entries, pattern):
    """Keys and values of a table of the program's sources; a text comes without its macro."""
    values = dict(found(pattern, re.sub(r"\s+", " ", entries)))
    return {key: re.sub(r'QStringLiteral\("([^"]*)".*', r"\1", value)
            for key, value in values.items()}


page = read("doc/help.html")
texts = program_texts()

labels = found('<b class="ui">(.*?)</b>', page)
expect(len(labels) > 50, "hardly any label is marked as one")
for label in map(plain, labels):
    expect(label in texts or any(f">{label}<" in text for text in texts),
           f"no such label: {label}")

messages = found('<code class="msg">(.*?)</code>', page)
expect(len(messages) > 30, "hardly any message is marked as one")
for message in map(plain, messages):
    expect(any(holds(text, message) for text in texts), f"no such message: {message}")

kept = defaults(read("base/runtimeconfig.cpp"), r'\{"(\w+/\w+)", (.+?)\},')
record = dict(found(r"\w+ (\w+) = (\w+);", read("session/acquisitionsettings.h")))
presets = {key: record.get(field) for key, field in
           defaults(read("ui/uisettings.cpp"),
                    r'\{"(\w+/\w+)", form\.\w+, defaults\.(\w+), Preset::RuntimeConfig\}').items()}
expect(len(kept) == 13 and len(presets) == 8, "the program's tables are not read")
own = {**kept, **presets}
rows = found(r'<th scope="row"><code class="key">(.*?)</code></th><td><code>(.*?)</code>', page)
expect(dict(rows) == own and len(rows) == len(own),
       f"keys or defaults differ: {sorted(set(rows) ^ set(own.items()))}")
for key in found('<code class="key">(.*?)</code>', page):
    expect(key in own, f"no such key: {key}")

# None may be missing in the file that is shipped: its comments survive a start only then.
shipped = ConfigParser()
shipped.optionxform = str
shipped.read("packaging/orvik.ini", encoding="utf-8")
stored = {f"{section}/{key}": value for section in shipped.sections()
          for key, value in shipped.items(section)}
expect(stored == kept,
       f"packaging/orvik.ini differs: {sorted(set(kept.items()) ^ set(stored.items()))}")

for tag in ["<script", "url(", "<link"]:
    expect(tag not in page, f"the page loads something: {tag}")
for source in found(' src="([^"]{0,20})', page):
    expect(source.startswith("data:image/"), f"a picture from elsewhere: {source}")

ids = found(' id="([^"]*)"', page)
expect(len(set(ids)) == len(ids), "an id stands twice")
for target in found(' href="([^"]*)"', page):
    expect(target.startswith("#") and target[1:] in ids, f"leads nowhere: {target}")

levels = list(map(int, found("<h([1-6])[ >]", page)))
for before, level in zip([0] + levels, levels):
    expect(level <= before + 1, f"a heading of level {level} follows one of level {before}")
expect(len(found('<img[^>]*? alt="[^"]+"', page)) == page.count("<img"), "a picture without words")
expect(page.count("<caption") == page.count("<table>"), "a table without a caption")
expect("<th>" not in page, "a head without a scope")

print("\n".join(f"doc/help.html: {complaint}" for complaint in complaints), end="\n" * bool(complaints))
sys.exit(bool(complaints))
