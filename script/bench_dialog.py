"""The settings dialog of script/bench: how long it takes to come, with many fonts installed, and to follow a change."""

import json
import os
import pathlib
import subprocess
import tempfile

import bench_statistics

DIALOGBENCH = bench_statistics.ROOT / "build/release/bench/dialogbench"
FONTS = 300


def install_fonts(folder):
    """Fonts of one glyph and a name each, and the configuration that shows them besides the system's."""
    from fontTools.fontBuilder import FontBuilder
    from fontTools.pens.ttGlyphPen import TTGlyphPen

    for number in range(FONTS):
        font = FontBuilder(1000, isTTF=True)
        font.setupGlyphOrder([".notdef", "A"])
        font.setupCharacterMap({65: "A"})
        font.setupGlyf({name: TTGlyphPen(None).glyph() for name in (".notdef", "A")})
        font.setupHorizontalMetrics({name: (500, 0) for name in (".notdef", "A")})
        font.setupHorizontalHeader(ascent=800, descent=-200)
        font.setupNameTable({"familyName": f"Bench {number:03}", "styleName": "Regular"})
        font.setupOS2()
        font.setupPost()
        font.save(f"{folder}/bench{number}.ttf")
    pathlib.Path(f"{folder}/fonts.conf").write_text(
        f'<?xml version="1.0"?><!DOCTYPE fontconfig SYSTEM "fonts.dtd"><fontconfig><include>/etc/fonts/fonts.conf</include>'
        f"<dir>{folder}</dir><cachedir>{folder}/cache</cachedir></fontconfig>")


def measure(row):
    """Prints all figures with `row`."""
    with tempfile.TemporaryDirectory() as folder:
        environment = dict(os.environ, QT_QPA_PLATFORM="offscreen")
        try:
            install_fonts(folder)
            environment["FONTCONFIG_FILE"] = f"{folder}/fonts.conf"
        except ImportError:
            print("without python3-fonttools only the installed fonts are there")
        subprocess.run([DIALOGBENCH, folder], env=environment, capture_output=True, check=True)  # fills the cache
        run = subprocess.run([DIALOGBENCH, folder], env=environment, capture_output=True, text=True, check=True)
    found = json.loads(run.stdout)
    row(f"settings dialog, {found['fonts']} font families", found["first"], "ms", target=150)
    row("  opened again", found["again"], "ms", target=150)
    row("a change with its preview", found["change"], "ms", target=5)
