"""The pictures of a task, each under its caption, and all tasks on one sheet and one page."""

import html
from pathlib import Path

import picture as pictures

SMALL = 320  # pixels: the width of a small copy


class Album:
    def __init__(self, folder, task):
        self.folder, self.task = Path(folder), task
        self.steps = []  # file name, caption, small copy

    def add(self, picture, caption):
        name = f"{self.task}-{len(self.steps) + 1:02}.png"
        picture.save(self.folder / name)
        self.steps.append((name, caption, picture.smaller(max(1, picture.width // SMALL))))


def bind(folder, albums):
    """Writes sheet.png and index.html."""
    steps = [step for album in albums for step in album.steps]
    if not steps:
        return
    pictures.sheet([small for _, _, small in steps], across=6).save(Path(folder) / "sheet.png")
    lines = ["<!DOCTYPE html><meta charset='utf-8'><title>走查</title>",
             "<style>figure{display:inline-block;width:320px;margin:4px}img{width:320px}</style>"]
    for album in albums:
        lines.append(f"<h2>{html.escape(album.task)}</h2>")
        lines += [f"<figure><a href='{name}'><img src='{name}'></a><figcaption>{html.escape(caption)}</figcaption>"
                  "</figure>" for name, caption, _ in album.steps]
    (Path(folder) / "index.html").write_text("\n".join(lines), encoding="utf-8")
