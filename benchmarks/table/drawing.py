"""The ratios of one run or several as a drawing, in colors that fit light and dark."""
from math import log
from xml.sax.saxutils import escape

LEFT, RIGHT, LINE, TOP = 440, 320, 26, 34
SMALLEST, LARGEST = 0.05, 2.0
STYLE = """
  text { font: 13px sans-serif; fill: #333 }
  .faint { stroke: #999; stroke-dasharray: 3 3 }
  .one { stroke: #666 }
  .ours { fill: #2a7fb8 }
  .missed { fill: #c4572b }
  .target { stroke: #333; stroke-width: 2 }
  @media (prefers-color-scheme: dark) {
    text { fill: #ddd } .one { stroke: #aaa } .target { stroke: #eee }
    .ours { fill: #5fb0e6 } .missed { fill: #e88a5c }
  }
"""


def place_of(ratio):
    """Halves are as far apart as doubles."""
    held = min(max(ratio, SMALLEST), LARGEST)
    return LEFT + RIGHT * log(held / SMALLEST) / log(LARGEST / SMALLEST)


def name_of(row):
    return ", ".join(filter(None, (row["work"], row["place"]))) + " : " + row["against"]


def scale(height):
    for tick in (0.05, 0.1, 0.25, 0.5, 1, 2):
        x = place_of(tick)
        yield (f'<line x1="{x:.0f}" x2="{x:.0f}" y1="{TOP - 8}" y2="{height - 8}" '
               f'class="{"one" if tick == 1 else "faint"}"/>'
               f'<text x="{x:.0f}" y="{TOP - 14}" text-anchor="middle">{tick:g}</text>')


def bars(row, runs, y):
    """One bar for each run that has the row, a mark where its target is, its name and its ratio."""
    yield f'<text x="{LEFT - 10}" y="{y + 15}" text-anchor="end">{escape(name_of(row))}</text>'
    thickness = (LINE - 8) / len(runs)
    for number, figures in enumerate(runs):
        found = figures.get(name_of(row))
        if found and found["ratio"] is not None:
            yield (f'<rect x="{LEFT}" y="{y + 2 + number * thickness:.1f}" '
                   f'width="{max(place_of(found["ratio"]) - LEFT, 1):.0f}" '
                   f'height="{thickness - 1:.1f}" '
                   f'class="{"missed" if found["met"] is False else "ours"}"/>')
    if row["target"] is not None:
        x = place_of(row["target"])
        yield f'<line x1="{x:.0f}" x2="{x:.0f}" y1="{y}" y2="{y + LINE - 6}" class="target"/>'
    yield f'<text x="{LEFT + RIGHT + 8}" y="{y + 15}">{row["ratio"]:.2f}</text>'


def markdown(runs, figure):
    """The rows of the first run, the ratios of all runs beside one another, as a table."""
    named = [{name_of(row): row for row in run} for run in runs]
    yield "| work | ours | plain tool | its time | ratio | target |"
    yield "|---|---|---|---|---|---|"
    for row in runs[0]:
        found = [figures[name_of(row)] for figures in named if name_of(row) in figures]
        ratios = " / ".join(f"{each['ratio']:.2f}" for each in found if each["ratio"] is not None)
        ours = " / ".join(figure(each["ours"], each["unit"]) for each in found)
        target = "" if row["target"] is None else f"{row['target']:g}"
        work = ", ".join(filter(None, (row["work"], row["place"])))
        plain = "" if row["plain"] is None else figure(row["plain"], row["unit"])
        yield f"| {work} | {ours} | {row['against']} | {plain} | {ratios} | {target} |"


def picture(runs):
    """A line for every row of the first run that compares something."""
    rows = [row for row in runs[0] if row["ratio"] is not None]
    named = [{name_of(row): row for row in run} for run in runs]
    height = TOP + LINE * len(rows) + 10
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{LEFT + RIGHT + 60}" '
             f'height="{height}"><title>Our time by that of plain tools</title>'
             f"<style>{STYLE}</style>", *scale(height)]
    for index, row in enumerate(rows):
        parts += bars(row, named, TOP + LINE * index)
    return "\n".join([*parts, "</svg>"])
