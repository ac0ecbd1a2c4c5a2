"""Pictures of a screen: what has changed from one to the next, and what of one goes into the page."""

import subprocess

from PIL import Image, ImageChops

from tests.desktops.support.rules import Box, around, clusters

BLOCK = 4          # Changes are looked for in squares of this size.
MAX_BLOCKS = 4000  # When more have changed, the screen is another one as a whole.
MIN_CHANGE = 12    # Of 255, in one colour: less is shading.
PAGE_SIZE = 480, 280
MAX_BYTES = 40_000


def whole(picture):
    return Box(0, 0, *picture.size)


def _difference(before, after, of):
    """White where they differ in that part, black elsewhere."""
    corners = (of.x, of.y, of.right, of.bottom)
    red, green, blue = ImageChops.difference(before.crop(corners), after.crop(corners)).split()
    strongest = ImageChops.lighter(ImageChops.lighter(red, green), blue)
    return strongest.point(lambda value: 255 if value >= MIN_CHANGE else 0)


def differ(before, after):
    return _difference(before, after, whole(before)).getbbox() is not None


def changes(before, after, reach, of=None):
    """Boxes around what differs and lies together, so far apart at most, in the part that is asked for."""
    of = of or whole(before)
    marked = _difference(before, after, of)
    blocks = []
    for y in range(0, of.height, BLOCK):
        row = marked.crop((0, y, of.width, y + BLOCK))
        if not row.getbbox():
            continue
        for x in range(0, of.width, BLOCK):
            box = row.crop((x, 0, x + BLOCK, BLOCK)).getbbox()
            if box:
                blocks.append(Box(of.x + x + box[0], of.y + y + box[1], box[2] - box[0], box[3] - box[1]))
    return clusters(blocks, reach) if len(blocks) <= MAX_BLOCKS else [around(blocks)]


def without(picture, box):
    """The same with nothing there."""
    picture = picture.copy()
    if box:
        picture.paste((0, 0, 0), (box.x, box.y, box.right, box.bottom))
    return picture


def save_for_page(picture, path, part):
    """The part of the picture around that box, small enough for a page."""
    width, height = PAGE_SIZE
    x = min(max(0, part.centre[0] - width // 2), max(0, picture.width - width))
    y = min(max(0, part.centre[1] - height // 2), max(0, picture.height - height))
    cut = picture.crop((x, y, min(x + width, picture.width), min(y + height, picture.height)))
    for colours in (128, 64, 32, 16, 8):
        cut.quantize(colours, dither=Image.Dither.NONE).save(path, optimize=True)
        if path.stat().st_size <= MAX_BYTES:
            return
    cut.resize((width // 2, height // 2)).quantize(16).save(path, optimize=True)


def taken_by(command, path, environment):
    """What a program takes of the screen, and writes to that file."""
    subprocess.run([*command, path], env=environment, check=True)
    with Image.open(path) as picture:
        return picture.convert("RGB")
