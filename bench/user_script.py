#!/usr/bin/env python3
"""The script that an astronomer writes in an afternoon: the same frames, one after the other.

Usage: user_script.py BASE_URL OUTPUT_FOLDER FRAMES WIDTH
"""
import csv
import json
import os
import sys
import time
import urllib.request
from datetime import datetime, timedelta

from PIL import Image, ImageDraw, ImageFont

base, out, frames, width = sys.argv[1], sys.argv[2], int(sys.argv[3]), int(sys.argv[4])
source_id, label = 10, "AIA 171"
font = ImageFont.truetype("/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf", width * 24 // 1000)
os.makedirs(os.path.join(out, "annotated"), exist_ok=True)

started = time.monotonic()
with open(os.path.join(out, "frames.csv"), "w", newline="") as ledger:
    rows = csv.writer(ledger)
    rows.writerow(["requested", "actual", "id", "file"])
    for n in range(frames):
        requested = datetime(2024, 5, 1) + timedelta(seconds=60 * n)
        stamp = requested.strftime("%Y-%m-%dT%H:%M:%SZ")
        with urllib.request.urlopen(
                f"{base}/getClosestImage/?date={stamp}&sourceId={source_id}") as answer:
            found = json.load(answer)
        name = f"frame_{n:06d}.png"
        original = os.path.join(out, name)
        with urllib.request.urlopen(
                f"{base}/downloadImage/?id={found['id']}&width={width}&type=png") as answer:
            with open(original, "wb") as file:
                file.write(answer.read())

        image = Image.open(original).convert("RGBA")
        draw = ImageDraw.Draw(image)
        margin = width // 80
        draw.text((margin, image.height - 3 * margin), found["date"] + " UTC", "white", font)
        draw.text((width - margin, image.height - margin), label, "white", font, "rs")
        bar = 200000 * found["rsun"] * width / (found["width"] * 695700)
        draw.line([(width - margin - bar, 3 * margin), (width - margin, 3 * margin)], "white", 2)
        draw.text((width - margin, 2 * margin), "200 000 km", "white", font, "rs")
        image.save(os.path.join(out, "annotated", name))
        rows.writerow([stamp, found["date"], found["id"], name])
        ledger.flush()

print(json.dumps({"frames": frames, "wall_ms": 1000 * (time.monotonic() - started) / frames}))
