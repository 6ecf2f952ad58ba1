#!/usr/bin/env python3
"""Runs the programs of a bench build in turn and prints what they measured as tables.

Usage: tables.py BUILD_FOLDER [--quick]

All programs of a table run one after the other in several rounds, so that a busy moment of the
machine falls on all of them; each figure is the median of its rounds.
"""
import contextlib
import json
import os
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
BUILD = os.path.abspath(sys.argv[1])
QUICK = "--quick" in sys.argv[2:]
UNAVOIDABLE = ["lookup", "download", "decode", "detect", "paint", "write"]


def output_of(*command, **environment):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True,
                          env={**os.environ, **environment}).stdout


def run(*command):
    return json.loads(output_of(*command))


class Service:
    """The sample archive; its pictures are rendered once and then come out of its cache."""

    def __enter__(self):
        program = os.path.join(BUILD, "simulator", "orvik-simulator")
        self.process = subprocess.Popen([program], stdout=subprocess.PIPE, text=True)
        line = self.process.stdout.readline()
        self.base = next(word for word in line.split() if word.startswith("http"))
        return self

    def __exit__(self, *_):
        self.process.send_signal(signal.SIGTERM)
        self.process.wait()


@contextlib.contextmanager
def folder():
    path = tempfile.mkdtemp(prefix="orvik-bench-")
    try:
        yield path
    finally:
        shutil.rmtree(path)


def program(name):
    return os.path.join(BUILD, "bench", name, f"bench_{name}")


class Programs:
    """The programs that make frames, each in a folder that is gone afterwards."""

    def __init__(self, base):
        self.base = base

    def engine(self, frames, width, *switches):
        with folder() as out:
            return self.engine_into(out, frames, width, *switches)

    def engine_into(self, out, frames, width, *switches):
        return self._run("accept", out, frames, width, *switches)

    def parts(self, frames, width, *switches):
        with folder() as out:
            return self._run("parts", out, frames, width, *switches)

    def script(self, frames, width):
        with folder() as out:
            return run(sys.executable, os.path.join(HERE, "user_script.py"), self.base, out,
                       str(frames), str(width))

    def _run(self, name, out, frames, width, *switches):
        return run(program(name), "--base", self.base, "--out", out, "--frames", str(frames),
                   "--width", str(width), *switches)


def median(results, *keys):
    def value(result):
        for key in keys:
            result = result[key]
        return result
    return statistics.median(value(result) for result in results)


def table(title, head, rows):
    print(f"\n{title}\n")
    cells = [head] + [[cell if isinstance(cell, str) else f"{cell:.2f}" for cell in row]
                      for row in rows]
    widths = [max(len(row[i]) for row in cells) for i in range(len(head))]
    for number, row in enumerate(cells):
        print("| " + " | ".join(c.ljust(w) if i == 0 else c.rjust(w)
                                for i, (c, w) in enumerate(zip(row, widths))) + " |")
        if number == 0:
            print("|" + "|".join("-" * (w + 2) for w in widths) + "|")
    sys.stdout.flush()


def verdict(holds):
    return "holds" if holds else "MISSED"


def measure_width(programs, width, frames, rounds):
    programs.engine(frames, width, "--no-window")  # fills the service's cache
    results = {"window": [], "engine": [], "parts": [], "qt": [], "script": []}
    few = max(2, frames // 4)  # the slow ones tell as much with fewer frames
    for _ in range(rounds):
        results["window"].append(programs.engine(frames, width))
        results["engine"].append(programs.engine(frames, width, "--no-window"))
        results["parts"].append(programs.parts(frames, width))
        results["qt"].append(programs.parts(few, width, "--qt-writer"))
        results["script"].append(programs.script(few, width))
    return results


def frame_tables(programs, width, frames, rounds):
    results = measure_width(programs, width, frames, rounds)
    parts = {name: median(results["parts"], "steps_ms", name)
             for name in UNAVOIDABLE + ["preview"]}
    unavoidable = sum(parts[name] for name in UNAVOIDABLE)
    shown = unavoidable + parts["preview"]
    qt_loop, script = median(results["qt"], "wall_ms"), median(results["script"], "wall_ms")
    qt_bare = qt_loop - median(results["qt"], "steps_ms", "preview")
    engine, window = median(results["engine"], "wall_ms"), median(results["window"], "wall_ms")
    stall = median(results["window"], "largest_stall_ms")
    longest = max(parts.values())

    table(f"A frame of {width} px, ms: its parts, each on its own", ["part", "ms"],
          [[name, parts[name]] for name in UNAVOIDABLE] + [["sum", unavoidable]]
          + [["preview in the window", parts["preview"]]])
    table(f"A frame of {width} px, ms: the engine",
          ["", "wall", "own CPU", "largest stall"],
          [[name, median(results[key], "wall_ms"), median(results[key], "self_cpu_ms"),
            median(results[key], "largest_stall_ms")]
           for name, key in (("engine", "engine"), ("engine, log and preview", "window"))]
          + [["loop with Qt's PNG writer", qt_loop, "", ""], ["Python script", script, "", ""]])
    table(f"A frame of {width} px, ms: where the engine's time goes, log and preview connected",
          ["stage", "ms"],
          [[stage, median(results["window"], "stages_ms", stage)]
           for stage in ("lookup", "judge", "download", "accept", "window")])
    table(f"A frame of {width} px: what that means", ["comparison", "factor", "bound", ""], [
        ["(a) engine / sum of its parts", engine / unavoidable, "", ""],
        ["(a) with log and preview / sum and preview", window / shown, "<= 1.05",
         verdict(window <= 1.05 * shown)],
        ["(a) with log and preview / sum alone", window / unavoidable, "", ""],
        ["(b) same loop with Qt's PNG writer / engine, no preview", qt_bare / engine, ">= 5",
         verdict(qt_bare >= 5 * engine)],
        ["(b) both with preview", qt_loop / window, ">= 5", verdict(qt_loop >= 5 * window)],
        ["(c) Python script / engine, neither shows a preview", script / engine, ">= 4",
         verdict(script >= 4 * engine)],
        ["(c) Python script / with log and preview", script / window, ">= 4",
         verdict(script >= 4 * window)],
        ["(d) blank-block search, % of a frame", 100 * parts["detect"] / window, "< 1",
         verdict(parts["detect"] < 0.01 * window)],
        ["longest stall / longest part", stall / longest, "<= 1.15",
         verdict(stall <= 1.15 * longest)],
    ])


def film_with_filters(session, frames, rectangle):
    """The same film by ffmpeg alone, held to one thread; ms per frame."""
    x, y, width, height = rectangle
    source = next(entry.path for entry in os.scandir(session) if entry.is_dir())
    filters = (f"crop={width}:{height}:{x}:{y},transpose=2,"
               "drawtext=text='2024-05-01 00\\:00\\:00 UTC':x=8:y=h-20:fontcolor=white:box=1")
    with folder() as out:
        started = time.monotonic()
        output_of("ffmpeg", "-v", "error", "-threads", "1", "-framerate", "25",
                  "-i", os.path.join(source, "frame_%06d.png"), "-filter_threads", "1",
                  "-vf", filters, "-c:v", "libx264", "-threads", "1", "-crf", "18",
                  "-pix_fmt", "yuv420p", os.path.join(out, "film.mp4"))
        return 1000 * (time.monotonic() - started) / frames


def region_tables(programs, frames, rounds):
    rectangle = (384, 384, 256, 256)
    options = ["--rect", ",".join(map(str, rectangle)), "--rotation", "90"]
    with folder() as out:
        programs.engine_into(out, frames, 1024, "--no-window")
        session = next(entry.path for entry in os.scandir(out) if entry.is_dir())
        results = {"ours": [], "qt": [], "filters": []}
        for _ in range(rounds):
            results["ours"].append(run(program("roi"), "--session", session, *options))
            results["qt"].append(run(program("roi"), "--session", session, *options,
                                     "--qt-writer"))
            results["filters"].append(film_with_filters(session, frames, rectangle))
    wall = median(results["ours"], "wall_ms")
    qt_loop = median(results["qt"], "stages_sum_ms")
    filters = statistics.median(results["filters"])
    table("A frame of a region film, 256 px out of 1024, turned, ms: its parts", ["part", "ms"],
          [[stage, median(results["ours"], "stages_ms", stage)]
           for stage in ("decode", "cut", "annotate", "write", "encode")]
          + [["sum", median(results["ours"], "stages_sum_ms")], ["the tool, wall", wall],
             ["ffmpeg's own filters, one thread", filters]])
    ratio = median(results["ours"], "wall_to_sum")
    table("A frame of a region film: what that means", ["comparison", "factor", "bound", ""], [
        ["the tool / sum of its parts", ratio, "<= 1.10", verdict(ratio <= 1.10)],
        ["loop with Qt's PNG writer / the tool", qt_loop / wall, ">= 1.8",
         verdict(qt_loop >= 1.8 * wall)],
        ["the tool / ffmpeg's own filters", wall / filters, "<= 0.55",
         verdict(wall <= 0.55 * filters)],
    ])


def window_figures(*command, **environment):
    lines = output_of(*command, **environment).splitlines()
    return [json.loads(line) for line in lines if line.startswith("{")]


def start_table():
    """A start is what a person waits for, so the first figures are those of a real screen."""
    starts = [program("window"), "--starts"]
    screen = ["xvfb-run", "--auto-servernum", "--server-args=-screen 0 1920x1200x24", *starts]
    rows = []
    for place, command, platform in (("X screen", screen, "xcb"),
                                     ("offscreen", starts, "offscreen")):
        figures = window_figures(*command, QT_QPA_PLATFORM=platform)
        empty, form, window = (figure["value"] for figure in figures)
        rows.append([place, empty, form, window, window / empty, window / form, "<= 1.5",
                     verdict(window <= 1.5 * empty)])
    table("From process start to first paint, ms CPU",
          ["", "empty window", "empty form", "150 datasources", "/ window", "/ form", "bound", ""],
          rows)


def window_table():
    figures = window_figures(program("window"), "--widgets")
    table("The main window", ["what", "size", "value", "unit"],
          [[figure["what"], str(figure["size"] or ""), figure["value"], figure["unit"]]
           for figure in figures])


def growth_tables(programs, frames):
    rows = []
    for room in ("plan", "output", "imaging"):
        result = run(os.path.join(BUILD, "bench", f"micro_{room}"), "--benchmark_format=json")
        known = {"name", "run_name", "run_type", "repetitions", "repetition_index", "threads",
                 "iterations", "real_time", "cpu_time", "time_unit", "family_index",
                 "per_family_instance_index"}
        for entry in result["benchmarks"]:
            counters = ", ".join(f"{key} {value:.3g}" for key, value in entry.items()
                                 if key not in known and isinstance(value, (int, float)))
            rows.append([entry["name"], f"{entry['cpu_time']:.4g} {entry['time_unit']}", counters])
    table("(e) What must not grow", ["measurement", "CPU time", "counters (per item, s or bytes)"],
          rows)
    long_run = programs.engine(frames, 128, "--no-window")
    growth = long_run["growth_kb_per_1000_frames"]
    table("(e) Memory over a long session, without its log", ["frames", "kB per 1000", "bound", ""],
          [[str(frames), growth, "< 1024", verdict(growth < 1024)]])


os.environ.setdefault("QT_QPA_PLATFORM", "offscreen")
with Service() as service:
    programs = Programs(service.base)
    frame_tables(programs, 1024, 8 if QUICK else 24, 1 if QUICK else 5)
    frame_tables(programs, 2048, 4 if QUICK else 12, 1 if QUICK else 3)
    if not QUICK:
        frame_tables(programs, 4096, 4, 2)
    region_tables(programs, 20 if QUICK else 100, 1 if QUICK else 3)
    growth_tables(programs, 500 if QUICK else 5000)
start_table()
window_table()
