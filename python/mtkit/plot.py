"""Plots of a replayed program, drawn with matplotlib's Agg renderer.

Both functions take a :class:`mtkit.Replay` (or any object with the same
attributes), write a picture when given a path, and return the
:class:`matplotlib.figure.Figure` so that callers can inspect or restyle it.
The x axis of every plot is the pose index: a stream line may give many
poses, and issues or solve failures found at a line are drawn at that line's
first pose.

Figures are built without :mod:`matplotlib.pyplot`, so nothing here changes
the interpreter's global backend or opens a window.
"""

import numpy as np
from matplotlib.figure import Figure
from matplotlib.ticker import MaxNLocator
from matplotlib.transforms import blended_transform_factory

__all__ = [
    "plot_axes",
    "plot_orientation",
    "find_unwinds",
    "pose_indices_of_lines",
    "tilt_and_turn",
    "UNWIND_TOLERANCE",
]

#: A step of a rotary axis between two poses counts as an unwind when it is
#: within this many degrees of a non-zero multiple of 360: a real move between
#: two poses is far smaller, and a controller that wraps or unwinds an axis
#: jumps by whole turns (359 -> 1 is a jump of -358).
UNWIND_TOLERANCE = 30.0

_SEVERITY_COLOURS = {"error": "tab:red", "fatal": "darkred", "warning": "tab:orange"}


def find_unwinds(values):
    """Indices ``i`` where ``values[i] - values[i-1]`` is about a whole turn.

    ``values`` are degrees of one rotary axis over the poses. A step counts
    when it is at least 180 degrees and within :data:`UNWIND_TOLERANCE` of a
    multiple of 360. NaN steps never count. Returns a NumPy int64 array.
    """
    values = np.asarray(values, dtype=np.float64)
    if values.size < 2:
        return np.zeros(0, dtype=np.int64)
    steps = np.diff(values)
    with np.errstate(invalid="ignore"):
        turns = np.round(steps / 360.0)
        near = np.abs(steps - 360.0 * turns) <= UNWIND_TOLERANCE
        found = near & (np.abs(steps) >= 180.0) & (turns != 0)
    return (np.nonzero(found)[0] + 1).astype(np.int64)


def pose_indices_of_lines(lines, wanted):
    """The pose index to draw each stream line of ``wanted`` at.

    ``lines`` is the stream line of each pose (0 when unknown). A wanted line
    goes to the first pose of that line, or else to the first pose of a later
    line (an issue on a line that moves nothing belongs before the next move);
    a line past every pose goes to the last pose. Unknown lines (0 on every
    pose) leave everything at the first pose. Returns a NumPy int64 array.
    """
    lines = np.asarray(lines, dtype=np.int64)
    wanted = np.asarray(list(wanted), dtype=np.int64)
    if lines.size == 0 or lines.max() <= 0:
        return np.zeros(wanted.size, dtype=np.int64)
    # Lines only grow along a program; unknown lines (0) take the line before.
    known = np.maximum.accumulate(lines)
    found = np.searchsorted(known, wanted, side="left")
    return np.minimum(found, lines.size - 1).astype(np.int64)


def tilt_and_turn(directions):
    """Tool tilt from +Z and turn about Z, in degrees, of each direction.

    ``directions`` is an (n, 3) array of tool axes (any length but zero).
    The tilt is the angle to +Z (0..180); the turn is the angle of the
    direction's XY projection from +X (-180..180], NaN where the direction is
    along Z and the turn means nothing. NaN rows give NaN in both.
    """
    d = np.asarray(directions, dtype=np.float64).reshape(-1, 3)
    length = np.linalg.norm(d, axis=1)
    with np.errstate(invalid="ignore", divide="ignore"):
        z = np.clip(d[:, 2] / length, -1.0, 1.0)
        tilt = np.degrees(np.arccos(z))
        across = np.hypot(d[:, 0], d[:, 1]) / length
        turn = np.degrees(np.arctan2(d[:, 1], d[:, 0]))
    turn = np.where(across > 1e-9, turn, np.nan)
    return tilt, turn


def _label(name, unit):
    return f"{name} ({unit})"


def _mark_lines(axes, positions, colour, style, label):
    """Vertical marks across one subplot; the label once, for the legend."""
    for k, x in enumerate(positions):
        axes.axvline(x, color=colour, linestyle=style, linewidth=0.9, alpha=0.8, label=label if k == 0 else None)


def plot_axes(replay, path=None, *, title=None):
    """Axis positions over the program, one subplot per axis.

    Each subplot shades the axis' travel (``replay.limits``) and draws its
    ends dashed; rotary unwinds (:func:`find_unwinds`) are marked with
    triangles; solve failures are solid red vertical lines and issues ticks
    along the foot of each subplot (coloured by severity, labelled with it),
    at their stream lines' poses. The plotted
    line of each subplot has the axis name as its label and exactly the
    replay's column as its data. Writes the figure to ``path`` when given
    (format from its extension) and returns the Figure.
    """
    names = list(replay.axis_names)
    units = list(replay.axis_units)
    poses = np.asarray(replay.poses, dtype=np.float64).reshape(-1, len(names))
    lines = np.asarray(replay.lines, dtype=np.int64)
    x = np.arange(poses.shape[0])
    rows = max(len(names), 1)
    figure = Figure(figsize=(10, 1.7 * rows + 1.0), layout="constrained")
    subplots = figure.subplots(rows, 1, sharex=True, squeeze=False)[:, 0]

    failures = pose_indices_of_lines(lines, replay.solve_failures)
    issues = list(replay.issues)
    issue_positions = pose_indices_of_lines(lines, [issue.line for issue in issues])

    for i, (name, unit) in enumerate(zip(names, units)):
        axes = subplots[i]
        column = poses[:, i]
        axes.plot(x, column, color="tab:blue", linewidth=1.0, label=name)
        travel = replay.limits.get(name) if hasattr(replay.limits, "get") else None
        if travel is not None:
            low, high = travel
            axes.axhspan(low, high, color="tab:green", alpha=0.08, linewidth=0)
            axes.axhline(low, color="tab:green", linestyle="--", linewidth=0.8)
            axes.axhline(high, color="tab:green", linestyle="--", linewidth=0.8, label="travel")
        if unit == "deg":
            unwinds = find_unwinds(column)
            if unwinds.size:
                axes.plot(unwinds, column[unwinds], linestyle="none", marker="v", color="tab:purple",
                          markersize=6, label="unwind")
        _mark_lines(axes, np.unique(failures), "tab:red", "-", "solve failure")
        # Issues come by the hundred (a travel error on every pose), so they
        # are ticks along the foot of the subplot, one per pose and severity.
        foot = blended_transform_factory(axes.transData, axes.transAxes)
        for severity in sorted({issue.severity for issue in issues}):
            at = np.unique([p for p, issue in zip(issue_positions, issues) if issue.severity == severity])
            axes.plot(at, np.full(at.size, 0.03), transform=foot, linestyle="none", marker="|", markersize=9,
                      color=_SEVERITY_COLOURS.get(severity, "tab:gray"), label=severity)
        axes.set_ylabel(_label(name, unit))
        axes.grid(True, linewidth=0.3, alpha=0.5)
        axes.legend(loc="upper right", fontsize="x-small", ncol=5, framealpha=0.6)
    subplots[-1].set_xlabel("pose")
    subplots[-1].xaxis.set_major_locator(MaxNLocator(integer=True))
    figure.suptitle(title or "Axis positions over the program")
    if path is not None:
        figure.savefig(path, dpi=110)
    return figure


def plot_orientation(replay, path=None, *, title=None):
    """Tool tilt from Z and turn about Z over the program, two subplots.

    The angles come from ``replay.tool_directions`` through
    :func:`tilt_and_turn`; poses without a direction, and the turn of a tool
    along Z, are gaps. Writes the figure to ``path`` when given and returns
    the Figure; the plotted lines are labelled "tilt" and "turn".
    """
    tilt, turn = tilt_and_turn(replay.tool_directions)
    x = np.arange(tilt.size)
    figure = Figure(figsize=(10, 4.6), layout="constrained")
    upper, lower = figure.subplots(2, 1, sharex=True)
    upper.plot(x, tilt, color="tab:blue", linewidth=1.0, label="tilt")
    upper.set_ylabel("tilt from Z (deg)")
    lower.plot(x, turn, color="tab:orange", linewidth=1.0, label="turn")
    lower.set_ylabel("turn about Z (deg)")
    lower.set_ylim(-185, 185)
    lower.set_yticks([-180, -90, 0, 90, 180])
    lower.set_xlabel("pose")
    lower.xaxis.set_major_locator(MaxNLocator(integer=True))
    for axes in (upper, lower):
        axes.grid(True, linewidth=0.3, alpha=0.5)
    if np.any(~np.isnan(tilt)):
        upper.set_ylim(bottom=0)
    figure.suptitle(title or "Tool orientation over the program")
    if path is not None:
        figure.savefig(path, dpi=110)
    return figure
