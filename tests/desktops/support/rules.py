"""What is right on a desktop: rules about boxes on its screen, in pixels from the top left. A rule that finds fault says
in a few words what with; it is silent, with an empty text, where all is well."""

import typing

MAX_MENU_DISTANCE = 40
POP_UP_MARGIN = 10     # To the screen's right edge.
POP_UP_TOP = 30        # From its top, unless a panel there is higher.
MIN_ITEM = 12          # What is smaller cannot be told from its neighbours.
MAX_STRETCH = 1.6      # The picture is 22 wide and 20 high.


class Box(typing.NamedTuple):
    x: int
    y: int
    width: int
    height: int

    @property
    def right(self):
        return self.x + self.width

    @property
    def bottom(self):
        return self.y + self.height

    @property
    def centre(self):
        return self.x + self.width // 2, self.y + self.height // 2

    def overlaps(self, other):
        return (self.x < other.right and other.x < self.right
                and self.y < other.bottom and other.y < self.bottom)

    def grown(self, margin, inside):
        """So much larger to all sides, as far as that is inside another."""
        x, y = max(self.x - margin, inside.x), max(self.y - margin, inside.y)
        return Box(x, y, min(self.right + margin, inside.right) - x, min(self.bottom + margin, inside.bottom) - y)


def around(boxes):
    """The smallest box that has them all in it."""
    x, y = min(box.x for box in boxes), min(box.y for box in boxes)
    return Box(x, y, max(box.right for box in boxes) - x, max(box.bottom for box in boxes) - y)


def gap(one, other):
    """How far two boxes are apart: 0 where they touch."""
    across = max(one.x, other.x) - min(one.right, other.right)
    down = max(one.y, other.y) - min(one.bottom, other.bottom)
    return max(across, down, 0)


def clusters(boxes, reach):
    """What lies together: boxes around those that are at most so far apart."""
    found = []
    for box in boxes:
        near = [other for other in found if gap(box, other) <= reach]
        while near:
            found = [other for other in found if other not in near]
            box = around([box, *near])
            near = [other for other in found if gap(box, other) <= reach]
        found.append(box)
    return sorted(found)


def count_fault(items):
    """The item is there once."""
    if not items:
        return "no item is seen"
    return "" if len(items) == 1 else f"the item is seen {len(items)} times"


def panel_fault(item, panels):
    """It is in a panel, and not by itself in the corner of the screen."""
    return "" if any(panel.overlaps(item) for panel in panels) else "the item is in no panel"


def size_fault(item, panels):
    """The item's picture is neither tiny nor stretched, and has room in its panel."""
    size = f"{item.width} x {item.height} px"
    if min(item.width, item.height) < MIN_ITEM:
        return f"it is tiny, {size}"
    if max(item.width, item.height) > MAX_STRETCH * min(item.width, item.height):
        return f"it is stretched or cut off, {size}"
    for panel in panels:
        if panel.overlaps(item) and around([panel, item]) != panel:
            return f"it is larger than its panel, {size}"
    return ""


def menu_fault(menu, item):
    """The menu opens at the item."""
    distance = gap(menu, item)
    return "" if distance <= MAX_MENU_DISTANCE else f"the menu opens {distance} px from the item"


def pop_up_fault(pop_up, screen, panels):
    """The pop-up stands in the top right corner, below the panel there is, and over none."""
    for panel in panels:
        if panel.overlaps(pop_up):
            across = min(panel.right, pop_up.right) - max(panel.x, pop_up.x)
            down = min(panel.bottom, pop_up.bottom) - max(panel.y, pop_up.y)
            return f"it covers {across} x {down} px of a panel"
    if screen.right - pop_up.right != POP_UP_MARGIN:
        return f"it is {screen.right - pop_up.right} px from the right edge"
    top = max([POP_UP_TOP, *[panel.bottom for panel in panels
                             if panel.y <= screen.y and panel.width > panel.height]])
    return "" if pop_up.y == top else f"it is {pop_up.y} px from the top instead of {top}"
