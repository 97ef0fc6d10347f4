"""Command line of the Python package: ``python3 -m mtkit plot ...``.

``plot MACHINE STREAM -o axes.png [--orientation orientation.png]
[--solver-only] [--tools FILE]`` replays a recorded stream on a machine and
writes the axis plot (and the tool-orientation plot when asked). Exit status
0 when the pictures are written, 1 when a file cannot be read or written or
the replay fails (with the reason on standard error), 2 for a wrong command
line.
"""

import argparse
import os
import sys


def _readable(path, what):
    """The reason ``path`` cannot be read, or None."""
    try:
        with open(path, "rb"):
            pass
    except OSError as error:
        return f"cannot read the {what} '{path}': {error.strerror or error}"
    if os.path.isdir(path):
        return f"cannot read the {what} '{path}': it is a directory"
    return None


def _plot(arguments):
    """Runs ``plot``; returns the exit status."""
    for path, what in ((arguments.machine, "machine"), (arguments.stream, "stream"), (arguments.tools, "tool table")):
        if path is None:
            continue
        reason = _readable(path, what)
        if reason:
            print(f"mtkit plot: {reason}", file=sys.stderr)
            return 1
    # Imported here so that a wrong command line answers without loading matplotlib.
    import mtkit
    from mtkit import plot

    try:
        replay = mtkit.replay(arguments.machine, arguments.stream, tools=arguments.tools,
                              solver_only=arguments.solver_only)
    except (ValueError, RuntimeError, OSError) as error:
        print(f"mtkit plot: {error}", file=sys.stderr)
        return 1
    title = f"{os.path.basename(arguments.stream)} on {os.path.basename(arguments.machine)}"
    try:
        plot.plot_axes(replay, arguments.output, title=title)
        print(f"{arguments.output}: {len(replay.axis_names)} axes over {len(replay.lines)} poses")
        if arguments.orientation:
            plot.plot_orientation(replay, arguments.orientation, title=title)
            print(f"{arguments.orientation}: tool tilt and turn over {len(replay.lines)} poses")
    except (OSError, ValueError) as error:
        print(f"mtkit plot: cannot write the picture: {error}", file=sys.stderr)
        return 1
    return 0


def parser():
    """The argument parser of ``python3 -m mtkit``."""
    top = argparse.ArgumentParser(prog="python3 -m mtkit", description="mtkit from Python.")
    commands = top.add_subparsers(dest="command", metavar="COMMAND", required=True)
    plot = commands.add_parser(
        "plot", help="plot the axes (and tool orientation) of a stream replayed on a machine",
        description="Replays STREAM on MACHINE as `mtkit simulate` does and plots each axis over the poses, "
                    "with the travel shaded, rotary unwinds, solve failures and issues marked.")
    plot.add_argument("machine", metavar="MACHINE", help="a machine file or an MTK file")
    plot.add_argument("stream", metavar="STREAM", help="a simulation stream text file")
    plot.add_argument("-o", "--output", required=True, metavar="PICTURE",
                      help="where the axis plot goes; the format follows the extension (.png, .svg, .pdf)")
    plot.add_argument("--orientation", metavar="PICTURE", help="also plot the tool's tilt and turn here")
    plot.add_argument("--solver-only", action="store_true",
                      help="replay through the machine's solver alone, without the rest of the standard chain")
    plot.add_argument("--tools", metavar="FILE", help="the tools of the stream's operations, a JSON file (as for `mtkit simulate --tools`)")
    plot.set_defaults(run=_plot)
    return top


def main(argv=None):
    """Entry point; returns the exit status."""
    arguments = parser().parse_args(argv)
    return arguments.run(arguments)


if __name__ == "__main__":
    sys.exit(main())
