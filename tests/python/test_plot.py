"""The plots of a replay and `python3 -m mtkit plot`."""

import math
import os
import subprocess
import sys
from types import SimpleNamespace

import numpy as np
import pytest

import mtkit
from mtkit import plot

EXAMPLES = os.environ.get("MTKIT_EXAMPLES_DIR", os.path.join(os.path.dirname(__file__), "..", "..", "examples"))
HAS_REPLAY = hasattr(mtkit, "replay")
needs_replay = pytest.mark.skipif(not HAS_REPLAY, reason="this build of mtkit has no replay")


def example(relative):
    return os.path.join(EXAMPLES, relative)


def fake_replay():
    """Five poses of X and C: C unwinds by -360 between poses 3 and 4."""
    return SimpleNamespace(
        axis_names=["X", "C"],
        axis_units=["mm", "deg"],
        poses=np.array([[0.0, 10.0], [1.0, 100.0], [2.0, 190.0], [3.0, 350.0], [4.0, -5.0]]),
        lines=np.array([3, 3, 5, 7, 9], dtype=np.int64),
        limits={"X": (-10.0, 10.0), "C": None},
        issues=[SimpleNamespace(code=19, severity="warning", text="w", line=5),
                SimpleNamespace(code=19, severity="warning", text="w", line=4),
                SimpleNamespace(code=7, severity="error", text="e", line=8)],
        solve_failures=[7],
        tool_directions=np.array([[0, 0, 1], [1, 0, 1], [0, -1, 0], [math.nan] * 3, [0, 0, -2]], dtype=np.float64),
    )


def line_labelled(axes, label):
    found = [line for line in axes.lines if line.get_label() == label]
    assert len(found) == 1, [line.get_label() for line in axes.lines]
    return found[0]


# --- the helpers, with values worked out by hand ---

def test_unwind_is_a_step_of_about_a_whole_turn():
    # Steps: 90, 90, 160, -355 (a turn less 5), 350 (a turn less 10), 200 (nowhere near).
    values = [10, 100, 190, 350, -5, 345, 545]
    assert plot.find_unwinds(values).tolist() == [4, 5]


def test_unwind_tolerance_is_thirty_degrees():
    assert plot.UNWIND_TOLERANCE == 30.0
    # 330 is 30 short of a turn: counted; 329 is not.
    assert plot.find_unwinds([0, 330]).tolist() == [1]
    assert plot.find_unwinds([0, 329]).tolist() == []
    # Two turns at once is an unwind too.
    assert plot.find_unwinds([0, 720, 720]).tolist() == [1]


def test_unwind_ignores_nan_and_short_programs():
    assert plot.find_unwinds([math.nan, 360.0, math.nan]).tolist() == []
    assert plot.find_unwinds([5.0]).tolist() == []


def test_lines_go_to_their_first_pose_or_the_next_line():
    lines = [0, 3, 3, 5, 0, 9]
    # 3 -> pose 1; 4 (no pose) -> first pose of line 5 = 3; 9 -> 5; 2 -> 1; 12 -> last pose; 0 -> 0.
    assert plot.pose_indices_of_lines(lines, [3, 4, 9, 2, 12, 0]).tolist() == [1, 3, 5, 1, 5, 0]


def test_unknown_lines_leave_marks_at_the_first_pose():
    assert plot.pose_indices_of_lines([0, 0, 0], [4, 7]).tolist() == [0, 0]


def test_tilt_and_turn_of_hand_worked_directions():
    tilt, turn = plot.tilt_and_turn(fake_replay().tool_directions)
    # +Z: tilt 0, no turn; (1,0,1): 45 and 0; -Y: 90 and -90; NaN row; -Z (length 2): 180, no turn.
    assert tilt[0] == pytest.approx(0.0)
    assert math.isnan(turn[0])
    assert tilt[1] == pytest.approx(45.0) and turn[1] == pytest.approx(0.0)
    assert tilt[2] == pytest.approx(90.0) and turn[2] == pytest.approx(-90.0)
    assert math.isnan(tilt[3]) and math.isnan(turn[3])
    assert tilt[4] == pytest.approx(180.0)
    assert math.isnan(turn[4])


# --- the figures ---

def test_axis_plot_is_written_and_plots_the_poses(tmp_path):
    replay = fake_replay()
    out = tmp_path / "axes.png"
    figure = plot.plot_axes(replay, str(out))
    assert out.stat().st_size > 1000
    assert out.read_bytes()[:8] == b"\x89PNG\r\n\x1a\n"
    assert len(figure.axes) == 2
    for i, name in enumerate(["X", "C"]):
        line = line_labelled(figure.axes[i], name)
        np.testing.assert_array_equal(line.get_xdata(), [0, 1, 2, 3, 4])
        np.testing.assert_array_equal(line.get_ydata(), replay.poses[:, i])
    assert figure.axes[0].get_ylabel() == "X (mm)"
    assert figure.axes[1].get_ylabel() == "C (deg)"


def test_axis_plot_marks_travel_unwinds_failures_and_issues():
    figure = plot.plot_axes(fake_replay())
    x_axes, c_axes = figure.axes
    # The travel of X: its ends dashed; C has none.
    assert list(line_labelled(x_axes, "travel").get_ydata()) == [10.0, 10.0]
    assert not [line for line in c_axes.lines if line.get_label() == "travel"]
    # C's unwind: 350 -> -5 is a step of -355, at pose 4; X (mm) has no unwinds.
    unwind = line_labelled(c_axes, "unwind")
    assert list(unwind.get_xdata()) == [4] and list(unwind.get_ydata()) == [-5.0]
    assert not [line for line in x_axes.lines if line.get_label() == "unwind"]
    for axes in figure.axes:
        # Failure on line 7: pose 3. Warnings on line 5 (pose 2) and line 4 (no pose: line 5's, pose 2 again),
        # one tick. Error on line 8: no pose, the next line's (9): pose 4.
        assert list(line_labelled(axes, "solve failure").get_xdata()) == [3, 3]
        assert list(line_labelled(axes, "warning").get_xdata()) == [2]
        assert list(line_labelled(axes, "error").get_xdata()) == [4]


def test_orientation_plot_is_written_and_plots_tilt_and_turn(tmp_path):
    out = tmp_path / "orientation.svg"
    figure = plot.plot_orientation(fake_replay(), str(out))
    assert out.read_text().lstrip().startswith("<?xml")
    tilt = line_labelled(figure.axes[0], "tilt").get_ydata()
    turn = line_labelled(figure.axes[1], "turn").get_ydata()
    np.testing.assert_allclose(tilt, [0, 45, 90, math.nan, 180], atol=1e-12)
    np.testing.assert_allclose(turn, [math.nan, 0, -90, math.nan, math.nan], atol=1e-12)


def test_an_empty_replay_still_plots(tmp_path):
    replay = fake_replay()
    replay.poses = np.zeros((0, 2))
    replay.lines = np.zeros(0, dtype=np.int64)
    replay.tool_directions = np.zeros((0, 3))
    replay.issues, replay.solve_failures = [], []
    plot.plot_axes(replay, str(tmp_path / "a.png"))
    plot.plot_orientation(replay, str(tmp_path / "o.png"))
    assert (tmp_path / "a.png").exists() and (tmp_path / "o.png").exists()


# --- the command line ---

def run_module(*arguments):
    return subprocess.run([sys.executable, "-m", "mtkit", *arguments], capture_output=True, text=True)


def test_plot_command_with_an_unreadable_file_exits_1(tmp_path):
    missing = str(tmp_path / "nothing.json")
    run = run_module("plot", missing, example("streams/vmc_3axis_pocket.txt"), "-o", str(tmp_path / "a.png"))
    assert run.returncode == 1
    assert run.stderr.startswith(f"mtkit plot: cannot read the machine '{missing}': ")
    assert not (tmp_path / "a.png").exists()
    run = run_module("plot", example("machines/vmc_3axis.json"), str(tmp_path), "-o", str(tmp_path / "a.png"))
    assert run.returncode == 1
    assert f"cannot read the stream '{tmp_path}'" in run.stderr


def test_plot_command_without_output_is_a_usage_error():
    run = run_module("plot", example("machines/vmc_3axis.json"), example("streams/vmc_3axis_pocket.txt"))
    assert run.returncode == 2
    assert "-o/--output" in run.stderr
    assert run_module().returncode == 2


@needs_replay
def test_plot_command_writes_both_pictures_of_an_example(tmp_path):
    axes, orientation = tmp_path / "axes.png", tmp_path / "orientation.png"
    run = run_module("plot", example("machines/headhead_5axis.json"), example("streams/headhead_5axis_swarf.txt"),
                     "-o", str(axes), "--orientation", str(orientation))
    assert run.returncode == 0, run.stderr
    assert axes.stat().st_size > 1000 and orientation.stat().st_size > 1000
    assert run.stdout.startswith(f"{axes}: 5 axes over ")


@needs_replay
def test_plotted_data_equals_the_replayed_poses(tmp_path):
    replay = mtkit.replay(example("machines/headhead_5axis.json"), example("streams/headhead_5axis_swarf.txt"))
    assert replay.poses.shape[0] > 0
    figure = plot.plot_axes(replay, str(tmp_path / "axes.png"))
    assert len(figure.axes) == len(replay.axis_names)
    for i, name in enumerate(replay.axis_names):
        np.testing.assert_array_equal(line_labelled(figure.axes[i], name).get_ydata(), replay.poses[:, i])
    figure = plot.plot_orientation(replay)
    tilt, turn = plot.tilt_and_turn(replay.tool_directions)
    np.testing.assert_array_equal(line_labelled(figure.axes[0], "tilt").get_ydata(), tilt)
    np.testing.assert_array_equal(line_labelled(figure.axes[1], "turn").get_ydata(), turn)


@needs_replay
def test_plot_command_solver_only_and_tools(tmp_path):
    out = tmp_path / "axes.png"
    run = run_module("plot", example("machines/vmc_3axis.json"), example("streams/vmc_3axis_contour.txt"), "-o",
                     str(out), "--solver-only", "--tools", example("streams/vmc_3axis_contour_tools.json"))
    assert run.returncode == 0, run.stderr
    assert out.exists()
