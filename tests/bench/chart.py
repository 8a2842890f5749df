"""Draws the comparison as an SVG, with nothing but the standard library."""

COLOURS = {"library": "#1b6ca8", "redrawing": "#5fa3cf", "Qt floor": "#8a8f98", "epoll floor": "#4b4f57", "QtSerialBus": "#c98b2b",
           "libmodbus": "#7a9a4d"}
LEFT, BAR, GAP, WIDTH, PANEL = 130, 18, 6, 300, 500


def _panel(x, y, title, unit, rows, scale):
    """One group of bars with whiskers from the least to the most of all rounds."""
    most = max(high for _, _, _, high in rows)
    parts = [f'<text x="{x}" y="{y - 8}" class="title">{title}</text>']
    for index, (name, median, low, high) in enumerate(rows):
        top = y + index * (BAR + GAP)
        middle = top + BAR / 2
        length = WIDTH * median / most
        parts.append(f'<text x="{x + LEFT - 8}" y="{middle + 4}" text-anchor="end">{name}</text>')
        parts.append(f'<rect x="{x + LEFT}" y="{top}" width="{length:.1f}" height="{BAR}" fill="{COLOURS[name]}"/>')
        parts.append(f'<path d="M{x + LEFT + WIDTH * low / most:.1f} {middle} H{x + LEFT + WIDTH * high / most:.1f}" '
                     'stroke="#000" stroke-width="1.5"/>')
        parts.append(f'<text x="{x + LEFT + WIDTH + 8}" y="{middle + 4}">{median / scale:,.1f} {unit}</text>')
    return parts


def draw(results, titles):
    """Rates on the left, the server's processor time on the right; a row of panels for each scenario."""
    servers = max(len(of_scenario) for of_scenario in results.values())
    height = servers * (BAR + GAP) + 44
    parts = []
    for row, (scenario, of_scenario) in enumerate(results.items()):
        top = 60 + row * height
        for column, (key, unit, scale, what) in enumerate((("full_rate", "thousand/s", 1e3, "requests a second"),
                                                           ("server_ns", "µs", 1e3, "processor time a request"))):
            rows = [(name, *(figures[key][part] for part in ("median", "least", "most")))
                    for name, figures in of_scenario.items()]
            parts += _panel(20 + column * (PANEL + 40), top, f"{titles[scenario]}: {what}", unit, rows, scale)
    width = 2 * PANEL + 120
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {len(results) * height + 50}" '
        'font-family="sans-serif" font-size="12">',
        "<style>.title{font-weight:bold;font-size:13px}</style>",
        '<rect width="100%" height="100%" fill="#fff"/>',
        '<text x="20" y="26" class="title">Bars: median of the rounds; lines: least to most. '
        'Server and load on one processor.</text>',
        *parts, "</svg>", ""])
