"""One measured figure: what each program got, and which limits ours must hold."""

import dataclasses


@dataclasses.dataclass
class Limit:
    text: str  # "1.15 x floor"
    max: float  # In the figure's unit.
    met: bool


@dataclasses.dataclass
class Figure:
    title: str
    unit: str
    how: str                                    # A sentence or more: how it was measured.
    values: dict                                # By program.
    limits: list = dataclasses.field(default_factory=list)
    digits: int = 0

    def require(self, text, max_value, ours="kivmenua"):
        """Ours must not be above this."""
        self.limits.append(Limit(text, max_value, self.values[ours] <= max_value))
        return self

    def require_times(self, factor, other):
        """Ours must not be above so many times another's."""
        return self.require(f"{factor:g} x {other}", factor * self.values[other])

    def require_below(self, what, others):
        """Ours must be below the lowest of the others."""
        lowest = min(self.values[other] for other in others)
        self.limits.append(Limit("below " + what, lowest, self.values["kivmenua"] < lowest))
        return self

    @property
    def met(self):
        return all(limit.met for limit in self.limits)
