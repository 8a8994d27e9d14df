"""A chart of bars in groups, on a logarithmic axis, as SVG."""
import math

WIDTH, LEFT, RIGHT = 720, 130, 80
BAR, GAP, TITLE = 16, 4, 30
OURS, THEIRS = "#1a6fb5", "#b8bec6"


def x_of(value, largest):
    """Bars begin at 0.1; the axis ends at the largest value."""
    share = (math.log10(value) + 1) / (math.log10(largest) + 1)
    return LEFT + max(share, 0) * (WIDTH - LEFT - RIGHT)


def text(x, y, content, anchor="start", weight="normal"):
    return (f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" font-weight="{weight}">'
            f"{content}</text>")


def draw(groups):
    """`groups` holds (title, [(name, value)]); the one named "driver" is ours and its value 1."""
    largest = max(value for _, bars in groups for _, value in bars)
    parts, y = [], 10
    parts.append(text(LEFT, y + 8, "time taken, ours being 1 (logarithmic)"))
    for title, bars in groups:
        y += TITLE
        parts.append(text(LEFT, y, title, weight="bold"))
        y += 8
        for name, value in bars:
            end = x_of(value, largest)
            colour = OURS if name == "driver" else THEIRS
            parts.append(text(LEFT - 8, y + 12, "ours" if name == "driver" else name, "end"))
            parts.append(f'<rect x="{LEFT}" y="{y}" width="{end - LEFT:.1f}" height="{BAR}" '
                         f'fill="{colour}"/>')
            parts.append(text(end + 6, y + 12, f"{value:.3g}"))
            y += BAR + GAP
    one = x_of(1, largest)
    height = y + 10
    parts.append(f'<line x1="{one:.1f}" y1="30" x2="{one:.1f}" y2="{height - 8}" stroke="#555" '
                 'stroke-dasharray="3 3"/>')
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" '
            f'font-family="sans-serif" font-size="12" fill="#222">'
            f'<rect width="{WIDTH}" height="{height}" fill="#fff"/>' + "\n".join(parts) +
            "</svg>\n")
