#!/usr/bin/python3
"""Says at the head of docs/physics.md how many rows of its two tables hold. Takes the page and rewrites
it; with --check behind it only fails when the page says something else."""
import pathlib
import re
import sys

AGREED = 0.1  # dB


def rows(text, mark):
    """Difference and sigma of each row between the marks, as they are printed."""
    table = re.search(rf"<!-- {mark} -->\n(.*?)<!-- end of {mark} -->", text, re.DOTALL)[1]
    lines = [[cell.strip() for cell in line.strip("|\n ").split("|")] for line in table.splitlines()]
    difference, sigma = lines[0].index("difference"), lines[0].index("sigma")
    return [(float(line[difference]), float(line[sigma])) for line in lines[2:]]


def holds(difference, sigma, exact):
    """Rows whose sigma is at most exact must agree without regard to it."""
    return abs(difference) <= AGREED + (3 * sigma if sigma > exact else 0)


def sentence(found, what, exact):
    held = sum(holds(difference, sigma, exact) for difference, sigma in found)
    near = sum(abs(difference) <= AGREED for difference, _ in found)
    farther = len(found) - held
    verdict = f"all {len(found)} hold" if farther == 0 else f"**{farther} of {len(found)} don't hold**"
    return (f"- {what}: {verdict}; {near} lie within {AGREED:g} dB of theory, "
            f"{held - near} farther away but within three sigmas more.\n")


def verdict(text):
    return (sentence(rows(text, "table"), "rows of the table", 0.05) +
            sentence(rows(text, "curves"), "points of the curves", 0.0))


def main():
    page = pathlib.Path(sys.argv[1])
    text = page.read_text()
    begin, end = "<!-- verdict -->\n", "<!-- end of verdict -->\n"
    head, rest = text.split(begin)
    said = rest.split(end)[0]
    if sys.argv[2:] == ["--check"]:
        sys.exit(0 if said == verdict(text) else f"{page} doesn't say:\n{verdict(text)}")
    page.write_text(head + begin + verdict(text) + end + rest.split(end)[1])


if __name__ == "__main__":
    main()
