"""Two kinds of SVG charts, drawn without any library."""

WIDTH = 760
LABELS = 190
COLOURS = ["#3b6ea5", "#c8803a", "#5f9e54", "#9a5fa5"]
STYLE = ("<style>text{font:12px sans-serif;fill:#222}.grid{stroke:#ddd}.mark{stroke:#b00020;"
         "stroke-width:2}@media (prefers-color-scheme:dark){text{fill:#ddd}.grid{stroke:#444}}"
         "</style>")


def svg(height, title, body):
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
            f'viewBox="0 0 {WIDTH} {height}" role="img" aria-label="{title}">{STYLE}'
            f'<text x="8" y="18" font-weight="bold">{title}</text>' + "".join(body) + "</svg>\n")


def round_step(span):
    """A step of 1, 2 or 5 times a power of ten that cuts the span into at most eight."""
    step = 10.0 ** -6
    while True:
        for factor in (1, 2, 5):
            if span / (step * factor) <= 8:
                return step * factor
        step *= 10


def legend(names, height):
    return [f'<rect x="{LABELS + 130 * i}" y="{height - 18}" width="10" height="10" '
            f'fill="{COLOURS[i]}"/><text x="{LABELS + 130 * i + 15}" y="{height - 9}">{name}</text>'
            for i, name in enumerate(names)]


def bars(title, series, rows):
    """Horizontal bars. rows: (label, [value of each series or None], mark or None)."""
    band = 9 * len(series) + 9
    height = 52 + band * len(rows) + 26
    top = max([v for _, values, _ in rows for v in values if v is not None]
              + [mark for _, _, mark in rows if mark is not None])
    scale = (WIDTH - LABELS - 50) / top
    body = []
    step = round_step(top)
    for k in range(int(top / step) + 1):
        x = LABELS + k * step * scale
        body.append(f'<line class="grid" x1="{x:.1f}" x2="{x:.1f}" y1="40" y2="{height - 30}"/>'
                    f'<text x="{x:.1f}" y="36" text-anchor="middle">{k * step:g}</text>')
    for row, (label, values, mark) in enumerate(rows):
        y = 48 + row * band
        body.append(f'<text x="{LABELS - 8}" y="{y + 9 * len(series) / 2 + 4:.0f}" '
                    f'text-anchor="end">{label}</text>')
        for i, value in enumerate(values):
            if value is not None:
                body.append(f'<rect x="{LABELS}" y="{y + 9 * i}" width="{value * scale:.1f}" '
                            f'height="8" fill="{COLOURS[i]}"/>')
        if mark is not None:
            x = LABELS + mark * scale
            body.append(f'<line class="mark" x1="{x:.1f}" x2="{x:.1f}" y1="{y - 3}" '
                        f'y2="{y + 9 * len(series) + 2}"/>')
    return svg(height, title, body + legend(series, height))


def lines(title, x_label, xs, series):
    """series: (name, [value at each x or None])."""
    height, left, bottom = 320, 60, 264
    top = max(v for _, values in series for v in values if v is not None)
    x_at = [left + (WIDTH - left - 40) * i / (len(xs) - 1) for i in range(len(xs))]
    scale = (bottom - 40) / top
    body = []
    step = round_step(top)
    for k in range(int(top / step) + 1):
        y = bottom - k * step * scale
        body.append(f'<line class="grid" x1="{left}" x2="{WIDTH - 30}" y1="{y:.1f}" y2="{y:.1f}"/>'
                    f'<text x="{left - 8}" y="{y + 4:.1f}" text-anchor="end">{k * step:g}</text>')
    for x, label in zip(x_at, xs):
        body.append(f'<text x="{x:.1f}" y="{bottom + 18}" text-anchor="middle">{label}</text>')
    body.append(f'<text x="{WIDTH / 2}" y="{bottom + 34}" text-anchor="middle">{x_label}</text>')
    for i, (_, values) in enumerate(series):
        points = [(x, bottom - v * scale) for x, v in zip(x_at, values) if v is not None]
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        body.append(f'<polyline points="{path}" fill="none" stroke="{COLOURS[i]}" '
                    'stroke-width="2"/>')
        body += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3" fill="{COLOURS[i]}"/>'
                 for x, y in points]
    return svg(height, title, body + legend([name for name, _ in series], height))
