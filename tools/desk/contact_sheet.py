"""All pictures of a night on one dark sheet."""

import os
import subprocess
import tempfile

BLACK = "#0A0A0B"
TILE_HEIGHT = 300


def make(sections, path):
    """sections: (title, tiles side by side, tiles); a tile: ([picture files of one moment, one per monitor], caption,
    time). Answers the path.
    """
    with tempfile.TemporaryDirectory(prefix="dormel-sheet-") as folder:
        made = [_section(os.path.join(folder, str(number)), *section) for number, section in enumerate(sections)]
        _run("convert", *made, "-background", BLACK, "-gravity", "northwest", "-append", "-bordercolor", BLACK,
             "-border", "36", path)
    return path


def _section(folder, title, columns, tiles):
    os.mkdir(folder)
    made = []
    for number, (files, caption, when) in enumerate(tiles):
        tile = os.path.join(folder, f"{number:02}.png")
        pictures = []
        for position, file in enumerate(files):
            pictures += ["(", file, "-resize", f"x{TILE_HEIGHT}", "-bordercolor", "#232325", "-border", "1"]
            if position > 0:  # a gap between the monitors, as on a desk
                pictures += ["-background", BLACK, "-gravity", "west", "-splice", "12x0"]
            pictures += [")"]
        _run("convert", *pictures, "-background", BLACK, "+append", "+repage",
             "-gravity", "southwest", "-splice", "0x44", "-font", "Inter-Medium", "-pointsize", "17",
             "-fill", "#F2F2F2", "-annotate", "+2+12", caption, "-gravity", "southeast",
             "-font", "Inter-Regular", "-fill", "#8A8A8E", "-annotate", "+2+12", when, tile)
        made.append(tile)
    body, whole = os.path.join(folder, "body.png"), os.path.join(folder, "whole.png")
    _run("montage", *made, "-tile", f"{columns}x", "-geometry", "+28+22", "-background", BLACK, body)
    _run("convert", body, "-background", BLACK, "-gravity", "north", "-splice", "0x110",
         "-gravity", "northwest", "-font", "Inter-Light", "-pointsize", "40", "-fill", "#F2F2F2",
         "-annotate", "+28+42", title, whole)
    return whole


def _run(*command):
    subprocess.run(command, check=True, capture_output=True, timeout=60)
