#!/usr/bin/env python3
"""Puts pictures and real output into the help page.

usage: embed.py PAGE ALBUM

Every <img data-picture="NAME"> of PAGE gets NAME.png or NAME.jpg of ALBUM as its source, with its
size. The page's own Python lines are run on the manifest of the album, and what they print is put
below them; so are the sample files. The page stays one file that needs nothing beside itself.
"""

import base64
import html
import json
import pathlib
import re
import struct
import subprocess
import sys
import tempfile


def png_size(data):
    return struct.unpack(">II", data[16:24])


def jpeg_size(data):
    position = 2
    while True:
        marker, length = struct.unpack(">HH", data[position : position + 4])
        if 0xFFC0 <= marker <= 0xFFC2:  # the frame header, after tables and comments
            height, width = struct.unpack(">HH", data[position + 5 : position + 9])
            return width, height
        position += 2 + length


def picture(album, name):
    for suffix, kind, size in ((".png", "png", png_size), (".jpg", "jpeg", jpeg_size)):
        file = album / (name + suffix)
        if file.exists():
            data = file.read_bytes()
            width, height = size(data)
            text = base64.b64encode(data).decode("ascii")
            return f'width="{width}" height="{height}" src="data:image/{kind};base64,{text}"'
    sys.exit(f"embed.py: there is no picture {name} in {album}")


def with_pictures(page, album):
    return re.sub(
        r'(<img data-picture="([\w-]+)")[^>]*?(\s*alt="[^"]*">)',
        lambda match: f"{match[1]} {picture(album, match[2])}{match[3]}",
        page,
    )


def block(page, name):
    """The text of <pre id="name"><code>."""
    return html.unescape(re.search(rf'<pre id="{name}"[^>]*><code>(.*?)</code>', page, re.S)[1])


def with_block(page, name, text):
    start, end = re.search(rf'<pre id="{name}"[^>]*><code>(.*?)</code>', page, re.S).span(1)
    return page[:start] + html.escape(text.rstrip("\n"), quote=False) + page[end:]


def printed(code, manifest):
    """What the lines print in the folder of the session."""
    with tempfile.TemporaryDirectory() as folder:
        (pathlib.Path(folder) / "manifest.csv").write_bytes(manifest.read_bytes())
        run = subprocess.run(
            [sys.executable, "-c", code], cwd=folder, check=True, capture_output=True, text=True
        )
        return run.stdout


def source_entry(session, nickname):
    sources = json.loads(session.read_text(encoding="utf-8"))["sources"]
    entry = next(source for source in sources if source["nickname"] == nickname)
    return json.dumps(entry, indent=4)


def main():
    file, album = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    page = file.read_text(encoding="utf-8")
    page = with_pictures(page, album)
    page = with_block(page, "sample-manifest", (album / "manifest-mishaps.txt").read_text())
    page = with_block(page, "sample-session", source_entry(album / "session.txt", "AIA 171"))
    page = with_block(page, "reader-output", printed(block(page, "reader"), album / "manifest.txt"))
    file.write_text(page, encoding="utf-8")


if __name__ == "__main__":
    main()
