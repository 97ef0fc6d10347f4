#!/usr/bin/python3
"""A small 5-axis post-processor on top of mtkit.

    python3 examples/post/post.py MACHINE CSV [-o OUT.nc] [--stream OUT.txt] [--feed F] [--force]

It reads a machine file and a CSV of tool positions: a header line naming the
columns x, y, z, i, j, k and optionally feed, then one line per move, with the
tool tip (x, y, z, mm, in the table's coordinates) and the tool direction
(i, j, k, from the tip up into the spindle; need not be of unit length).

1. The rotary positions of each direction come from the script-facing
   configuration of the machine: the first move takes the solution the axes'
   preferences choose, every later one the solution with the least rotary
   travel from the move before, and a solution outside an axis's range gives
   way to the other one.
2. The moves are written as a simulation stream, each as a placeholder of axis
   values that carries the chosen rotary positions (the linear axes NaN)
   followed by the 5-axis motion, and the stream is replayed through the
   library, whose solver finds the linear axes for each tool tip and whose
   travel check judges every pose.
3. The G-code is written from the poses of the replay: numbered blocks, the
   first move a rapid (G0), the others feed moves (G1 with F) unless their
   feed cell is empty, every axis of the machine with three decimals, M30 at
   the end.

Exit status: 0 when done, 1 for input that cannot be read or used, or a replay
with errors (unless --force), 2 for a wrong command line. Only the Python
standard library and the mtkit package are used.
"""

import argparse
import csv
import math
import os
import sys
import tempfile

import mtkit

PROG = "post.py"

# The movement flags of a motion in the stream: the movement in the low bits,
# synchronised interpolation (bit 28) and the shortest rotary traverse
# (bit 30) above, as the library's producers write them.
_SYNCHRONIZED_SHORTEST = (1 << 28) | (1 << 30)
FLAGS_RAPID = _SYNCHRONIZED_SHORTEST | 1
FLAGS_CUTTING = _SYNCHRONIZED_SHORTEST | 3

# A rotary value the chain hands back may differ from the one the post chose
# by rounding only.
ROTARY_TOLERANCE = 1e-6


class PostError(Exception):
    """An input the post cannot use; its text is the whole one-line message."""

    def __repr__(self):
        return "PostError(%r)" % str(self)


class Move:
    """One CSV line: tip (mm), unit tool direction, feed (mm/min, None for a rapid) and its line."""

    def __init__(self, line, tip, direction, feed):
        self.line = line
        self.tip = tip
        self.direction = direction
        self.feed = feed

    def __repr__(self):
        return "Move(line=%d, tip=%r, direction=%r, feed=%r)" % (self.line, self.tip, self.direction, self.feed)


def _number(text):
    """A finite float from a CSV cell, or None."""
    try:
        value = float(text)
    except ValueError:
        return None
    return value if math.isfinite(value) else None


def read_moves(path, default_feed):
    """The moves of a CSV file. Blank lines and lines that start with '#' are skipped.

    The first move is a rapid. Without a feed column the others are feed moves at
    `default_feed`; with one, an empty feed cell makes a rapid.
    """
    try:
        with open(path, newline="", encoding="utf-8") as f:
            text = f.read()
    except (OSError, UnicodeDecodeError) as e:
        raise PostError("cannot read '%s': %s" % (path, getattr(e, "strerror", None) or e))
    columns = None
    moves = []
    for number, raw in enumerate(text.splitlines(), start=1):
        if not raw.strip() or raw.lstrip().startswith("#"):
            continue
        cells = [cell.strip() for cell in next(csv.reader([raw]))]
        where = "%s:%d: " % (path, number)
        if columns is None:
            names = [cell.lower() for cell in cells]
            wanted = ["x", "y", "z", "i", "j", "k"]
            if sorted(names) not in (sorted(wanted), sorted(wanted + ["feed"])):
                raise PostError(where + "the header must name the columns x,y,z,i,j,k and optionally feed, got '%s'"
                                % raw.strip())
            columns = {name: names.index(name) for name in names}
            continue
        if len(cells) != len(columns):
            raise PostError(where + "expected %d values (%s), got %d: '%s'"
                            % (len(columns), ",".join(sorted(columns, key=columns.get)), len(cells), raw.strip()))
        values = [_number(cells[columns[name]]) for name in ("x", "y", "z", "i", "j", "k")]
        if any(value is None for value in values):
            raise PostError(where + "x, y, z, i, j, k must be six numbers, got '%s'" % raw.strip())
        length = math.sqrt(sum(v * v for v in values[3:]))
        if length < 1e-9:
            raise PostError(where + "the tool direction (i, j, k) is zero")
        feed = default_feed
        if "feed" in columns:
            cell = cells[columns["feed"]]
            feed = None if cell == "" else _number(cell)
            if cell != "" and (feed is None or feed <= 0):
                raise PostError(where + "the feed must be a number above 0 or empty (rapid), got '%s'" % cell)
        if not moves:
            feed = None  # the machine comes from where it stands: position at rapid
        moves.append(Move(number, tuple(values[:3]), tuple(v / length for v in values[3:]), feed))
    if not moves:
        raise PostError("%s: no moves" % path)
    return moves


def _abc(vector):
    return [vector.x, vector.y, vector.z]


def _travel(a, b):
    return sum(abs(p - q) for p, q in zip(a, b))


class RotaryChooser:
    """Chooses the rotary positions (an ABC triple in degrees) of each tool direction."""

    def __init__(self, configuration):
        self.configuration = configuration
        rotary = [axis for axis in configuration.axes if axis.kind == "rotary"]
        if len(rotary) != 2:
            raise PostError("the machine has %d rotary axes; this post is for 5-axis machines (two)" % len(rotary))
        self.rotary = rotary
        self.previous = None

    def __repr__(self):
        return "RotaryChooser(%r, previous=%r)" % (self.configuration, self.previous)

    def _supported(self, abc):
        return self.configuration.is_abc_supported(abc)

    def choose(self, direction):
        """The ABC triple (degrees) for a unit direction; PostError text (without place) when there is none."""
        c = self.configuration
        try:
            first, second = c.abc_by_direction_both(direction)
        except mtkit.ScriptError as e:
            raise PostError("no rotary position points the tool along (%.6g, %.6g, %.6g): %s" % (*direction, e))
        if self.previous is None:
            # The first move honours the axes' preferences (a B head that prefers
            # positive angles leans with B > 0 when it can).
            try:
                candidates = [_abc(c.preferred_abc(first))]
            except mtkit.ScriptError:
                candidates = []
            candidates += [_abc(first), _abc(second)]
        else:
            # Then the nearest solution to where the axes stand, whole turns
            # included, so that a rotary axis does not unwind between moves;
            # the other one after it, should the nearest be out of range.
            candidates = [_abc(c.closest_abc(self.previous, first))]
            candidates += sorted((_abc(c.remap_to_abc(solution, self.previous)) for solution in (first, second)),
                                 key=lambda abc: _travel(abc, self.previous))
        # A solution out of range may come into it by whole turns.
        for abc in list(candidates):
            try:
                candidates.append(_abc(c.remap_abc(abc)))
            except mtkit.ScriptError:
                pass
        chosen = next((abc for abc in candidates if self._supported(abc)), None)
        if chosen is None:
            raise PostError("no rotary position within the axes' ranges points the tool along (%.6g, %.6g, %.6g): "
                            "the solutions are %s and %s degrees"
                            % (*direction, _triple(_abc(first)), _triple(_abc(second))))
        chosen = self._keep_at_pole(direction, chosen)
        self.previous = chosen
        return chosen

    def _keep_at_pole(self, direction, abc):
        """With the tool along the last rotary axis, that axis stays where it stood."""
        if self.previous is None:
            return abc
        kept = _abc(self.configuration.preserve_rotary_at_zero(direction, self.previous, abc))
        return kept if self._supported(kept) else abc


def _triple(abc):
    return "(%s)" % ", ".join("%.3f" % v for v in abc)


def _quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def _real(value):
    # As the library's writer prints a double: 17 significant digits, "nan".
    return format(value, ".17g")


class MachineAxes:
    """The machine's axes in the order the replay uses, and where each rotary one takes its value from an ABC triple."""

    def __init__(self, machine_path, configuration):
        try:
            machine = mtkit.Machine.from_file(machine_path)
        except (OSError, ValueError) as e:
            raise PostError(str(e).replace("\n", " "))
        self.names = list(machine.axis_names)
        self.part_ids = list(machine.part_ids)
        self.units = list(machine.axis_units)
        self.abc_index = {}
        for column, (name, part, unit) in enumerate(zip(self.names, self.part_ids, self.units)):
            if unit != "deg":
                continue
            match = [axis for axis in configuration.axes
                     if axis.kind == "rotary" and (axis.part == part or (not axis.part and axis.name == name))]
            if len(match) != 1:
                raise PostError("'%s': the rotary axis %s is not one of the configuration's" % (machine_path, name))
            self.abc_index[column] = "ABC".index(match[0].coordinate)

    def __repr__(self):
        return "MachineAxes(%r)" % self.names

    def placeholder(self, abc):
        """Axis values with the chosen rotary positions and NaN for the axes the solver is to find."""
        return [abc[self.abc_index[i]] if i in self.abc_index else math.nan for i in range(len(self.names))]


def write_stream(path, axes, moves, rotaries):
    """Writes the moves as a simulation stream text file; returns the stream line of each move's motion."""
    lines = [
        "TextFileSimulationStream: 1 0",
        "ApiVersion: 1 0",
        "MachineId: 1 1",
        "NcProgramId: 1 1000",
        "AxisOrdering: 2 %d %s" % (len(axes.names), " ".join(_quoted(n) + " " + _quoted(p)
                                                          for n, p in zip(axes.names, axes.part_ids))),
        'SimGroup: 1 "post"',
        "OperationId: 1 1",
        "WorkOffset: 1 54",
        "NCTool: 1",
        "NCContext: 1",
        "Section: 1 Operation",
    ]
    motion_lines = []
    for move, abc in zip(moves, rotaries):
        values = axes.placeholder(abc)
        lines.append("AxisValues: 1 %d %s" % (len(values), " ".join(_real(v) for v in values)))
        words = [_real(v) for v in move.tip + move.direction]
        if move.feed is None:
            lines.append("Rapid5D: 1 %s %d" % (" ".join(words), FLAGS_RAPID))
        else:
            lines.append("Linear5D: 1 %s %s %d" % (" ".join(words), _real(move.feed), FLAGS_CUTTING))
        motion_lines.append(len(lines))
    lines += ["SectionEnd: 1", 'SimGroupEnd: 1 "post"']
    try:
        with open(path, "w", encoding="utf-8", newline="\n") as f:
            f.write("\n".join(lines) + "\n")
    except OSError as e:
        raise PostError("cannot write '%s': %s" % (path, e.strerror or e))
    return motion_lines


def replay(machine_path, stream_path):
    """The chain's poses for the stream.

    The solver stream alone: it sets the rotary axes from each placeholder and
    solves the linear ones for the motion's tip, so each pose has the rotary
    positions chosen here. The post has no compensation to ask for, so it
    leaves the standard chain's other links out (through them the poses are
    the same: the compensation look-ahead holds only compensated motions).
    """
    try:
        return mtkit.replay(machine_path, stream_path, solver_only=True)
    except (OSError, ValueError) as e:
        raise PostError(str(e).replace("\n", " "))


def _number_word(letter, value):
    text = "%.3f" % value
    if text == "-0.000":
        text = "0.000"
    return letter + text


def _feed_word(feed):
    text = ("%.3f" % feed).rstrip("0").rstrip(".")
    return "F" + text


def gcode(names, poses, moves):
    """The program: one block per move, numbered in tens, then M30."""
    blocks = []
    number = 10
    for pose, move in zip(poses, moves):
        words = ["N%d" % number, "G0" if move.feed is None else "G1"]
        words += [_number_word(name, value) for name, value in zip(names, pose)]
        if move.feed is not None:
            words.append(_feed_word(move.feed))
        blocks.append(" ".join(words))
        number += 10
    blocks.append("N%d M30" % number)
    return "\n".join(blocks) + "\n"


def post(machine_path, csv_path, stream_path, default_feed, force, warn):
    """The G-code text for the CSV on the machine, with the stream written to `stream_path`.

    `warn` takes each line for stderr. Raises PostError for input that cannot be
    used and for a replay with errors unless `force`.
    """
    moves = read_moves(csv_path, default_feed)
    try:
        configuration = mtkit.MachineConfiguration.from_machine_file(machine_path)
    except (OSError, ValueError) as e:
        raise PostError(str(e).replace("\n", " "))
    axes = MachineAxes(machine_path, configuration)
    chooser = RotaryChooser(configuration)
    rotaries = []
    for move in moves:
        try:
            rotaries.append(chooser.choose(move.direction))
        except PostError as e:
            raise PostError("%s:%d: %s" % (csv_path, move.line, e))
    motion_lines = write_stream(stream_path, axes, moves, rotaries)
    run = replay(machine_path, stream_path)

    csv_line = dict(zip(motion_lines, (move.line for move in moves)))

    def place(stream_line):
        if stream_line in csv_line:
            return "%s:%d: " % (csv_path, csv_line[stream_line])
        return "%s:%d: " % (stream_path, stream_line) if stream_line else ""

    failed = False
    for issue in run.issues:
        warn("%s%s: %s" % (place(issue.line), issue.severity, issue.text))
        failed = failed or issue.severity in ("error", "fatal")
    for line in run.solve_failures:
        failed = True
        if not any(issue.code == 8 and issue.line == line for issue in run.issues):
            warn("%sthe linear axes could not be solved for the tool tip" % place(line))
    if [int(line) for line in run.lines] != motion_lines or list(run.axis_names) != axes.names:
        raise PostError("the replay of '%s' did not give one pose per move" % stream_path)
    for pose, move, abc in zip(run.poses, moves, rotaries):
        for column, index in axes.abc_index.items():
            if not abs(pose[column] - abc[index]) <= ROTARY_TOLERANCE:
                raise PostError("%s:%d: the chain moved axis %s to %.6f instead of the chosen %.6f"
                                % (csv_path, move.line, axes.names[column], pose[column], abc[index]))
    if failed and not force:
        raise PostError("the program leaves the machine's travel or cannot be solved (see above); "
                        "--force writes it all the same")
    return gcode(axes.names, run.poses, moves)


def main(argv=None):
    parser = argparse.ArgumentParser(
        prog=PROG, description="Post a CSV of tool positions and directions for a 5-axis machine as G-code.")
    parser.add_argument("machine", metavar="MACHINE", help="machine file (JSON) or MTK file")
    parser.add_argument("csv", metavar="CSV", help="tool positions: header x,y,z,i,j,k[,feed], then one move a line")
    parser.add_argument("-o", "--output", metavar="OUT.nc", help="the G-code file (standard output by default)")
    parser.add_argument("--stream", metavar="OUT.txt", help="keep the simulation stream in this file")
    parser.add_argument("--feed", type=float, default=1000.0, metavar="F",
                        help="feed (mm/min) of a CSV without a feed column (default 1000)")
    parser.add_argument("--force", action="store_true",
                        help="write the G-code even when the replay reports errors (out of travel, not solved)")
    args = parser.parse_args(argv)
    if not (math.isfinite(args.feed) and args.feed > 0):
        parser.error("--feed must be above 0")

    def warn(text):
        print("%s: %s" % (PROG, text), file=sys.stderr)

    try:
        if args.stream:
            text = post(args.machine, args.csv, args.stream, args.feed, args.force, warn)
        else:
            with tempfile.TemporaryDirectory(prefix="mtkit-post-") as folder:
                text = post(args.machine, args.csv, os.path.join(folder, "stream.txt"), args.feed, args.force, warn)
        if args.output:
            try:
                with open(args.output, "w", encoding="utf-8", newline="\n") as f:
                    f.write(text)
            except OSError as e:
                raise PostError("cannot write '%s': %s" % (args.output, e.strerror or e))
        else:
            sys.stdout.write(text)
    except PostError as e:
        warn(str(e))
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
