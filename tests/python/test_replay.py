"""mtkit.replay: recorded streams through the machine's chain, poses as NumPy."""

import csv
import math
import os
import subprocess

import numpy as np
import pytest

import mtkit

EXAMPLES = os.environ.get("MTKIT_EXAMPLES_DIR", os.path.join(os.path.dirname(__file__), "..", "..", "examples"))
TOOL = os.environ.get("MTKIT_TOOL")


def machine(name):
    return os.path.join(EXAMPLES, "machines", name + ".json")


def stream(name):
    return os.path.join(EXAMPLES, "streams", name + ".txt")


# Every bundled stream with the machine it was recorded for.
CASES = [
    ("vmc_3axis", "vmc_3axis_contour", None),
    ("vmc_3axis", "vmc_3axis_contour", "vmc_3axis_contour_tools.json"),
    ("vmc_3axis", "vmc_3axis_pocket", None),
    ("headtable_5axis", "headtable_5axis_swarf", None),
    ("headhead_5axis", "headhead_5axis_swarf", None),
    ("headhead_5axis", "headhead_5axis_swarf_out_of_travel", None),
    ("trunnion_5axis", "trunnion_5axis_swarf", None),
]


def tool_csv(tmp_path, machine_name, stream_name, tools=None, solver_only=False):
    """The poses `mtkit simulate --csv` writes: (axis names, rows of floats, lines)."""
    out = tmp_path / "poses.csv"
    command = [TOOL, "simulate", machine(machine_name), stream(stream_name), "--csv", "-o", str(out)]
    if tools:
        command += ["--tools", os.path.join(EXAMPLES, "streams", tools)]
    if solver_only:
        command.append("--solver-only")
    subprocess.run(command, check=True, capture_output=True)
    header = None
    rows, lines = [], []
    with open(out, newline="") as f:
        for row in csv.reader(f):
            if row[0] == "pose":
                header = row[4:]
                continue
            lines.append(int(row[1]))
            rows.append(dict(zip(header, (float(v) for v in row[4:]))))
    return rows, lines


@pytest.mark.skipif(not TOOL, reason="MTKIT_TOOL is not set")
@pytest.mark.parametrize("machine_name,stream_name,tools", CASES)
@pytest.mark.parametrize("solver_only", [False, True])
def test_poses_equal_what_the_tool_writes_as_csv(tmp_path, machine_name, stream_name, tools, solver_only):
    tools_path = os.path.join(EXAMPLES, "streams", tools) if tools else None
    result = mtkit.replay(machine(machine_name), stream(stream_name), tools=tools_path, solver_only=solver_only)
    rows, lines = tool_csv(tmp_path, machine_name, stream_name, tools, solver_only)
    assert len(rows) > 0
    assert result.poses.shape == (len(rows), len(result.axis_names))
    assert result.lines.tolist() == lines
    for i, row in enumerate(rows):
        for j, name in enumerate(result.axis_names):
            expected = row.get(name, math.nan)
            got = result.poses[i, j]
            # The CSV holds the shortest text that reads back to the same
            # double, so the values are equal, not close.
            assert (math.isnan(expected) and math.isnan(got)) or got == expected, (i, name)


def test_arrays_have_their_types_and_shapes():
    result = mtkit.replay(machine("headtable_5axis"), stream("headtable_5axis_swarf"))
    n = len(result)
    assert n > 0
    assert result.poses.dtype == np.float64 and result.poses.shape == (n, 5)
    assert result.lines.dtype == np.int64 and result.lines.shape == (n,)
    assert result.tool_directions.dtype == np.float64 and result.tool_directions.shape == (n, 3)


def test_axis_names_and_units_follow_the_machine_chain_first():
    result = mtkit.replay(machine("headtable_5axis"), stream("headtable_5axis_swarf"))
    assert result.axis_names == ["X", "Y", "Z", "B", "C"]
    assert result.axis_units == ["mm", "mm", "mm", "deg", "deg"]


def test_rotary_values_are_degrees():
    # The program tilts B between 10 and 30 degrees, 0.17 to 0.52 in
    # radians: every B of a 5-axis motion stands beyond a radian's reach.
    result = mtkit.replay(machine("headtable_5axis"), stream("headtable_5axis_swarf"))
    b = result.poses[:, 3]
    assert np.all(np.abs(b[~np.isnan(b)]) > 9.9)
    assert np.nanmax(np.abs(b)) < 30.1
    assert result.lines[0] == 17  # the Rapid5D that the first placeholder is for


@pytest.mark.parametrize("machine_name,stream_name", [c[:2] for c in CASES if "5axis" in c[0]])
def test_the_standard_chain_gives_the_solvers_poses_for_an_uncompensated_5_axis_program(machine_name, stream_name):
    # Nothing is compensated in these programs, so the compensation
    # look-ahead holds nothing back and each motion is solved with the
    # placeholder recorded before it, as by the solver alone.
    standard = mtkit.replay(machine(machine_name), stream(stream_name))
    alone = mtkit.replay(machine(machine_name), stream(stream_name), solver_only=True)
    assert len(standard) == len(alone) > 100
    np.testing.assert_array_equal(standard.poses, alone.poses)
    np.testing.assert_array_equal(standard.lines, alone.lines)


@pytest.mark.parametrize("solver_only", [True, False])
def test_tool_directions_are_the_tool_axis_of_each_pose(solver_only):
    # Each motion is solved with the placeholder recorded before it.
    result = mtkit.replay(machine("headtable_5axis"), stream("headtable_5axis_swarf"), solver_only=solver_only)
    # The first motion, a Rapid5D, asks for (0.17364817766693033,
    # -0.33682408883346515, 0.92541657839832336); the solved pose points the
    # tool there.
    np.testing.assert_allclose(
        result.tool_directions[0], [0.17364817766693033, -0.33682408883346515, 0.92541657839832336], atol=1e-9)
    lengths = np.linalg.norm(result.tool_directions, axis=1)
    np.testing.assert_allclose(lengths[~np.isnan(lengths)], 1.0, atol=1e-9)


def test_tool_directions_tilt_by_the_head_b_axis():
    # On the head-head machine B tilts the spindle away from Z and C turns
    # it about Z, so the tool axis leans from Z by exactly |B|.
    for solver_only in (True, False):
        result = mtkit.replay(machine("headhead_5axis"), stream("headhead_5axis_swarf"), solver_only=solver_only)
        b = result.poses[:, result.axis_names.index("B")]
        known = ~np.isnan(b)
        assert known.sum() > 10
        tilt = np.degrees(np.arccos(np.clip(result.tool_directions[known, 2], -1, 1)))
        np.testing.assert_allclose(tilt, np.abs(b[known]), atol=1e-9)


def test_tool_directions_of_a_3_axis_machine_are_its_spindle():
    result = mtkit.replay(machine("vmc_3axis"), stream("vmc_3axis_pocket"))
    assert len(result) > 0
    np.testing.assert_array_equal(result.tool_directions, np.tile([0.0, 0.0, 1.0], (len(result), 1)))


def test_limits_are_the_travel_the_check_applies():
    result = mtkit.replay(machine("headhead_5axis"), stream("headhead_5axis_swarf"))
    assert set(result.limits) == set(result.axis_names)
    for name, limit in result.limits.items():
        assert limit is None or (isinstance(limit, tuple) and len(limit) == 2 and limit[0] <= limit[1]), name


def test_out_of_travel_issues_carry_code_100_as_errors():
    result = mtkit.replay(machine("headhead_5axis"), stream("headhead_5axis_swarf_out_of_travel"))
    travel = [issue for issue in result.issues if issue.code == 100]
    assert travel
    for issue in travel:
        assert issue.severity == "error"
        assert issue.text.startswith("Axis ") and " is out of travel at line " in issue.text
        assert issue.line > 0
        assert f" at line {issue.line}: " in issue.text


def test_a_post_warning_of_the_stream_is_a_warning_issue():
    result = mtkit.replay(machine("headtable_5axis"), stream("headtable_5axis_swarf"))
    warnings = [issue for issue in result.issues if issue.code == 19]
    assert warnings
    assert warnings[0].severity == "warning"
    assert warnings[0].text == "Feed rate 2500 mm/min is above the machine's 5-axis limit; 1500 mm/min is used."
    assert warnings[0].line == 24


def test_solve_failures_are_the_solvers_own(tmp_path):
    # A target far out of reach of the 3-axis machine's solver is still
    # solved (linear axes are unlimited for the solver); a stream that
    # records a SOLVE_FAILED issue itself is not counted as one.
    text = (stream_text("vmc_3axis_pocket")
            + 'Warning: 1 8 "recorded by the post"\n')
    path = tmp_path / "recorded.txt"
    path.write_text(text)
    result = mtkit.replay(machine("vmc_3axis"), str(path))
    assert any(issue.code == 8 and issue.text == "recorded by the post" for issue in result.issues)
    assert result.solve_failures == []


def stream_text(name):
    with open(stream(name)) as f:
        return f.read()


def test_an_mtk_file_replays_like_its_machine_file():
    mtk = os.path.join(EXAMPLES, "mtk", "trunnion_5axis.mtk")
    from_mtk = mtkit.replay(mtk, stream("trunnion_5axis_swarf"))
    assert len(from_mtk) > 0
    assert from_mtk.poses.shape[1] == len(from_mtk.axis_names)


def test_paths_may_be_path_objects(tmp_path):
    import pathlib
    result = mtkit.replay(pathlib.Path(machine("vmc_3axis")), pathlib.Path(stream("vmc_3axis_pocket")))
    assert len(result) > 0


def test_a_missing_stream_is_an_os_error_with_its_reason():
    with pytest.raises(OSError) as caught:
        mtkit.replay(machine("vmc_3axis"), "/nonexistent/stream.txt")
    assert str(caught.value) == "cannot read '/nonexistent/stream.txt': No such file or directory"


def test_a_missing_machine_is_an_os_error_with_its_reason():
    with pytest.raises(OSError) as caught:
        mtkit.replay("/nonexistent/machine.json", stream("vmc_3axis_pocket"))
    assert str(caught.value) == "cannot read '/nonexistent/machine.json': No such file or directory"


def test_a_file_that_is_not_a_stream_is_a_value_error(tmp_path):
    path = tmp_path / "not_a_stream.txt"
    path.write_text("hello\n")
    with pytest.raises(ValueError) as caught:
        mtkit.replay(machine("vmc_3axis"), str(path))
    assert str(caught.value).startswith(f"'{path}' is not a simulation stream text file: ")


def test_a_file_that_is_not_a_machine_is_a_value_error(tmp_path):
    path = tmp_path / "machine.json"
    path.write_text("[1, 2]")
    with pytest.raises(ValueError) as caught:
        mtkit.replay(str(path), stream("vmc_3axis_pocket"))
    assert str(caught.value).startswith(f"'{path}' is not a machine file:")


def test_an_ordering_of_parts_the_machine_lacks_is_refused(tmp_path):
    path = tmp_path / "foreign.txt"
    path.write_text('TextFileSimulationStream: 1 0\nApiVersion: 1 0\nAxisOrdering: 2 1 "Q" "q_axis"\n')
    with pytest.raises(ValueError) as caught:
        mtkit.replay(machine("vmc_3axis"), str(path))
    assert str(caught.value).startswith(
        f"{path}:3: the axis ordering names part 'q_axis' (axis Q), which the machine does not have (axes: ")


def test_a_tools_file_with_an_unknown_member_is_a_value_error(tmp_path):
    path = tmp_path / "tools.json"
    path.write_text('{"3": {"radius": 5, "colour": "red"}}')
    with pytest.raises(ValueError) as caught:
        mtkit.replay(machine("vmc_3axis"), stream("vmc_3axis_contour"), tools=str(path))
    assert str(caught.value) == (
        f"'{path}', operation \"3\": unknown member \"colour\" (known: tool, radius, unit, thread_pitch)")


def test_tools_change_the_compensated_poses():
    plain = mtkit.replay(machine("vmc_3axis"), stream("vmc_3axis_contour"))
    tools = mtkit.replay(machine("vmc_3axis"), stream("vmc_3axis_contour"),
                         tools=os.path.join(EXAMPLES, "streams", "vmc_3axis_contour_tools.json"))
    # The compensated path has poses of its own (a corner may gain or lose
    # one), so the two differ whatever their lengths.
    assert not np.array_equal(plain.poses, tools.poses)


def test_tools_and_solver_only_are_keyword_only():
    with pytest.raises(TypeError):
        mtkit.replay(machine("vmc_3axis"), stream("vmc_3axis_pocket"), None)


def test_reprs_name_what_they_show():
    result = mtkit.replay(machine("headtable_5axis"), stream("headtable_5axis_swarf"))
    text = repr(result)
    assert text.startswith("Replay(machine='")
    assert f"poses={len(result)}" in text
    assert "axes=['X', 'Y', 'Z', 'B', 'C']" in text
    issue = result.issues[0]
    assert repr(issue).startswith(f"Issue(code={issue.code}, severity='{issue.severity}', line={issue.line}, text=")


def test_docstrings_are_there():
    for thing in (mtkit.replay, mtkit.Replay, mtkit.Issue):
        assert thing.__doc__
