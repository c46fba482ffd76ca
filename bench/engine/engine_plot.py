"""The plot of the engine's measurement: time against rows, as an SVG file."""
import math

COLOURS = {"merge, update": "#1b6ca8", "merge, insert": "#c0392b", "copy, new table": "#27803b",
           "delete by key": "#8e44ad", "delete by row": "#b9770e"}
PANEL_WIDTH, PANEL_HEIGHT = 430, 420
LEFT, TOP, RIGHT, BOTTOM = 90, 60, 20, 60


class Scale:
    """Whole decades of a logarithmic axis."""

    def __init__(self, values, start, length):
        self.low = math.floor(math.log10(min(values)))
        self.high = max(math.ceil(math.log10(max(values))), self.low + 1)
        self.start, self.length = start, length

    def place(self, value):
        return self.start + self.length * (math.log10(value) - self.low) / (self.high - self.low)

    def decades(self):
        return [10.0 ** power for power in range(self.low, self.high + 1)]


def text(x, y, words, anchor="middle", size=12):
    return (f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" font-size="{size}">{words}'
            "</text>")


def line(x1, y1, x2, y2, colour="#dddddd"):
    return (f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" '
            f'stroke="{colour}"/>')


def axes(left, x_scale, y_scale, title):
    right, bottom = left + PANEL_WIDTH, TOP + PANEL_HEIGHT
    drawn = [text((left + right) / 2, TOP - 14, title, size=15)]
    for value in x_scale.decades():
        x = x_scale.place(value)
        drawn += [line(x, TOP, x, bottom), text(x, bottom + 18, f"{value:,.0f}")]
    for value in y_scale.decades():
        y = y_scale.place(value)
        drawn += [line(left, y, right, y), text(left - 6, y + 4, f"{value:g}", "end")]
    return drawn + [text((left + right) / 2, bottom + 40, "rows"),
                    text(left, TOP - 14, "seconds")]


def curve(points, colour, dashed):
    path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
    dash = ' stroke-dasharray="5 4"' if dashed else ""
    drawn = [f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="1.8"{dash}/>']
    shape = "white" if dashed else colour
    return drawn + [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3" fill="{shape}" stroke="{colour}"/>'
                    for x, y in points]


def legend(left):
    drawn, y = [], TOP + 18
    for case, colour in COLOURS.items():
        drawn += [line(left, y - 4, left + 28, y - 4, colour), text(left + 36, y, case, "start")]
        y += 20
    return drawn + [text(left, y + 8, "filled, solid: the engine", "start"),
                    text(left, y + 28, "open, dashed: the replay", "start"),
                    text(left, y + 56, "a table with 20 columns", "start")]


def write(path, lines):
    shown = [entry for entry in lines if entry["table"] == "20 columns"]
    platforms = list(dict.fromkeys(entry["platform"] for entry in shown))
    seconds = [entry[side] / 1e3 for entry in shown for side in ("engine ms", "replay ms")]
    drawn = []
    for number, platform in enumerate(platforms):
        left = LEFT + number * (PANEL_WIDTH + LEFT)
        x_scale = Scale([entry["rows"] for entry in shown], left, PANEL_WIDTH)
        y_scale = Scale(seconds, TOP + PANEL_HEIGHT, -PANEL_HEIGHT)
        drawn += axes(left, x_scale, y_scale, platform)
        for case, colour in COLOURS.items():
            group = [entry for entry in shown
                     if entry["platform"] == platform and entry["case"] == case]
            for side, dashed in (("replay ms", True), ("engine ms", False)):
                drawn += curve([(x_scale.place(entry["rows"]), y_scale.place(entry[side] / 1e3))
                                for entry in group], colour, dashed)
    legend_left = LEFT + len(platforms) * (PANEL_WIDTH + LEFT) - LEFT + RIGHT
    width, height = legend_left + 230, TOP + PANEL_HEIGHT + BOTTOM
    head = (f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
            f'viewBox="0 0 {width} {height}" font-family="sans-serif" fill="#222222">')
    with open(path, "w", encoding="ascii") as file:
        file.write("\n".join([head, '<rect width="100%" height="100%" fill="white"/>', *drawn,
                              *legend(legend_left), "</svg>", ""]))
