"""All pictures of a night on one dark sheet."""

import os
import subprocess
import tempfile

BLACK = "#0A0A0B"
TILE_HEIGHT = 300


def make(tiles, path, title="One night"):
    """tiles: ([picture files of one moment, one per monitor], caption, time). Answers the path."""
    with tempfile.TemporaryDirectory(prefix="dormel-sheet-") as folder:
        made = []
        for number, (files, caption, when) in enumerate(tiles):
            tile = os.path.join(folder, f"{number:02}.png")
            command = ["convert"]
            for position, file in enumerate(files):
                command += ["(", file, "-resize", f"x{TILE_HEIGHT}", "-bordercolor", "#232325", "-border", "1"]
                if position > 0:  # a gap between the monitors, as on a desk
                    command += ["-background", BLACK, "-gravity", "west", "-splice", "12x0"]
                command += [")"]
            command += ["-background", BLACK, "+append", "+repage"]
            command += ["-gravity", "southwest", "-splice", "0x44", "-font", "Inter-Medium", "-pointsize", "17",
                        "-fill", "#F2F2F2", "-annotate", "+2+12", caption, "-gravity", "southeast",
                        "-font", "Inter-Regular", "-fill", "#8A8A8E", "-annotate", "+2+12", when, tile]
            subprocess.run(command, check=True, capture_output=True, timeout=60)
            made.append(tile)
        body = os.path.join(folder, "body.png")
        subprocess.run(["montage", *made, "-tile", "2x", "-geometry", "+28+22", "-background", BLACK, body],
                       check=True, capture_output=True, timeout=60)
        subprocess.run(["convert", body, "-background", BLACK, "-gravity", "north", "-splice", "0x110",
                        "-gravity", "northwest", "-font", "Inter-Light", "-pointsize", "40", "-fill", "#F2F2F2",
                        "-annotate", "+28+42", title, "-gravity", "center", "-bordercolor", BLACK, "-border", "36",
                        path], check=True, capture_output=True, timeout=60)
    return path
