"""What a run has measured against the goals, and the page that tells it: no measuring here.

A run is {"run": facts in words, "figures": {key: number}, "missing": {beginning of keys: why they are not there}}; the
page is performance.template.md with the figures filled in: {key:format}, {table:goals}, {run:fact}."""
import math
import string
from dataclasses import dataclass


@dataclass
class Goal:
    key: str       # the figure that counts
    title: str
    limit: float
    goal: str      # in words
    measured: str  # in words, with figures
    missed: str    # what to think of when the goal is missed
    below: bool = False  # the limit itself is too much


BUSY = "Other programs take part: run it again when the computer has nothing else to do."
GOALS = [
    Goal("frame.all.calls", "simulator calls of a mean frame", 100, "at most 100", "{frame.all.calls:.0f}",
         "A count, the same on every computer: rows of the catalogue read more than they did."),
    Goal("frame.ratio", "all callbacks of a frame, against the first complete form", 0.75, "at most 0.75 times",
         "{frame.ratio:.3f} times ({frame.all.ours:,.0f} against {reference.all.ours:,.0f} ns)",
         f"{BUSY} Both are about a microsecond: a neighbour on the same core's caches moves the ratio."),
    Goal("native.CustomRefreshFrame", "custom offsets, 1,000 with 8 tokens: refresh of each", 100, "at most 100 ns",
         "{native.CustomRefreshFrame:.0f} ns", BUSY),
    Goal("native.ScanUnchanged.times_memcmp", "change scan, nothing changed, against one memcmp: native", 15, "at most 15 times",
         "{native.ScanUnchanged.times_memcmp:.1f} times", BUSY),
    Goal("wine.scan.ratio", "the same, 32 bits", 15, "at most 15 times", "{wine.scan.ratio:.1f} times", BUSY),
    Goal("native.BM_DispatchWrite", "one dispatched 2-byte write, lock included", 100, "at most 100 ns",
         "{native.BM_DispatchWrite:.0f} ns", BUSY),
    Goal("wine.request_50.ratio", "local request of 50 records, against a bare message", 1.2, "at most 1.2 times",
         "{wine.request_50.ratio:.2f} times ({wine.request_50.request:.0f} against {wine.request_50.bare:.0f} us)",
         f"{BUSY} Nearly all of both is Wine waking another process, and takes as long as the processor is wanted elsewhere."),
    Goal("drops.share", "readers' dropped refreshes, 8 network clients and a busy local one", 0.005, "below 0.005 %",
         "{drops.share:.4f} % ({drops.dropped:,.0f} of {drops.total:,.0f}; 95 % interval {drops.low:.4f} to {drops.high:.4f} %{drops.reach})",
         f"{BUSY} A thread that loses the processor while it holds the lock costs a whole frame's refreshes, about six, and on a "
         "computer with too few free cores that happens. The interval tells how much of the figure is chance.", below=True),
    Goal("trouble.silent.disable", "disable while 8 clients hammer and no name server answers", 1.6,
         "at most 1 s beyond 0.6 s of stated sleeps", "{trouble.silent.disable:.2f} s, the longest of {trouble.silent.rounds:.0f}", BUSY),
    Goal("idle.linux", "idle: all worker threads together", 1, "below 1 % of a core", "{idle.linux:.2f} %", BUSY, below=True),
]


def interval(events, trials):
    """The 95 % interval of the rate of rare events, as shares: what Poisson leaves 2.5 % for on each side."""
    def tail(mean, count):
        """The probability of at most `count` events."""
        return sum(math.exp(i * math.log(mean) - mean - math.lgamma(i + 1)) for i in range(count + 1)) if mean > 0 else 1

    def mean_with(probability, count):
        low, high = 0.0, 3 * count + 20.0
        for _ in range(100):
            middle = (low + high) / 2
            low, high = (middle, high) if tail(middle, count) > probability else (low, middle)
        return low

    lowest = mean_with(0.975, events - 1) if events else 0
    return lowest / trials, mean_with(0.025, events) / trials


def share_figures(key, dropped, total):
    """A share of rare events in percent, with its interval, as figures."""
    low, high = interval(dropped, total)
    return {f"{key}.dropped": dropped, f"{key}.total": total, f"{key}.share": 100 * dropped / total,
            f"{key}.low": 100 * low, f"{key}.high": 100 * high}


def reach(goal, figures):
    """Where the interval of a share lies, as a figure in words; nothing for other goals."""
    key = goal.key.removesuffix(".share")
    if key == goal.key or goal.key not in figures:
        return {}
    low, high = figures[f"{key}.low"], figures[f"{key}.high"]
    return {f"{key}.reach": ", all below the goal" if high < goal.limit else
            ", all beyond the goal" if low >= goal.limit else ", which reaches beyond the goal"}


def why_missing(run, key):
    """Why a figure is not there; the longest beginning of its name that has a reason."""
    reasons = [start for start in run["missing"] if key.startswith(start)]
    return run["missing"][max(reasons, key=len)] if reasons else "this run has no such figure"


class Filler(string.Formatter):
    """Fills {key:format} from a run; what is missing becomes a dash."""

    def __init__(self, run, tables=None):
        self.run, self.tables, self.lost = run, tables or {}, []

    def get_field(self, name, args, kwargs):
        return name, name

    def format_field(self, value, spec):
        if value in ("table", "run"):
            return self.tables[spec] if value == "table" else str(self.run["run"][spec])
        if value not in self.run["figures"]:
            self.lost.append(value)
            return "-"
        figure = self.run["figures"][value]
        return figure if isinstance(figure, str) else format(figure, spec)


def judge(run):
    """(goal, measured in words, "yes", "no" or "not measured") of every goal."""
    rows = []
    for goal in GOALS:
        filler = Filler({**run, "figures": {**run["figures"], **reach(goal, run["figures"])}})
        measured = filler.format(goal.measured)
        if filler.lost:
            rows.append((goal, "not measured: " + why_missing(run, filler.lost[0]), "not measured"))
            continue
        figure = run["figures"][goal.key]
        met = figure < goal.limit if goal.below else figure <= goal.limit
        rows.append((goal, measured, "yes" if met else "no"))
    return rows


def goals_table(run):
    lines = ["| Figure | Measured | Goal | Met |", "|---|---|---|---|"]
    for goal, measured, met in judge(run):
        lines.append(f"| {goal.title} | {measured} | {goal.goal} | {'**no**' if met == 'no' else met} |")
    return "\n".join(lines)


def verdict(run):
    """The goals that were missed, each with what to think of; and what was not measured."""
    rows = judge(run)
    missed = [f"- Missed: {goal.title}, {measured}; the goal is {goal.goal}. {goal.missed}" for goal, measured, met in rows if met == "no"]
    reasons = {}
    for start, why in run["missing"].items():
        reasons.setdefault(why, []).append(f"`{start}`")
    absent = [f"- Not measured, as {why}: the figures {', '.join(starts)}." for why, starts in reasons.items()]
    met = sum(met == "yes" for _, _, met in rows)
    return "\n".join([f"{met} of {len(rows)} goals are met in this run.", *([""] if missed or absent else []), *missed, *absent])


def text_table(run):
    """The goals for a terminal."""
    rows = [("figure", "measured", "goal", "met"), *((goal.title, measured, goal.goal, met) for goal, measured, met in judge(run))]
    widths = [max(len(row[i]) for row in rows) for i in range(4)]
    return "\n".join(" | ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip() for row in rows)


def page(template, run):
    filler = Filler(run, {"goals": goals_table(run), "verdict": verdict(run)})
    return filler.format(template)
