"""The runtime machine and its solver from Python, against what `mtkit fk` and
`mtkit ik` print and against values worked out by hand."""

import inspect
import json
import math
import os
import subprocess

import numpy as np
import pytest

import mtkit

EXAMPLES = os.environ.get("MTKIT_EXAMPLES_DIR", os.path.join(os.path.dirname(__file__), "..", "..", "examples"))
TOOL = os.environ.get("MTKIT_TOOL")


def example(*parts):
    return os.path.join(EXAMPLES, *parts)


def run_tool(*arguments):
    """The numbers `mtkit` prints: 'name: x y z' lines and 'NAME=value' axes."""
    result = subprocess.run([TOOL, *arguments], capture_output=True, text=True)
    numbers, axes = {}, {}
    for line in result.stdout.splitlines():
        line = line.strip()
        if "=" in line and ":" not in line:
            name, value = line.split("=", 1)
            axes[name] = float(value.split()[0])
        elif ":" in line:
            key, rest = line.split(":", 1)
            words = rest.split()
            try:
                numbers[key] = [float(w) for w in words if w not in ("mm",)]
            except ValueError:
                pass
    return numbers, axes


def near(actual, expected, tolerance=5e-7):
    np.testing.assert_allclose(np.asarray(actual, dtype=float), np.asarray(expected, dtype=float), atol=tolerance,
                               rtol=0)


# --- building ----------------------------------------------------------------


def test_machine_from_a_definition_and_from_the_file_agree():
    path = example("machines", "headtable_5axis.json")
    a = mtkit.Machine(mtkit.read_machine_file(path))
    b = mtkit.Machine.from_file(path)
    assert a.axis_names == b.axis_names == ["X", "Y", "Z", "B", "C"]
    assert a.axis_units == ["mm", "mm", "mm", "deg", "deg"]
    assert a.part_ids == ["x_axis", "y_axis", "z_axis", "b_axis", "c_axis"]
    assert (a.head_part_id, a.table_part_id) == ("b_head", "rotary_table")


def test_an_mtk_file_gives_a_machine_with_the_default_controller():
    m = mtkit.Machine.from_file(example("mtk", "trunnion_5axis.mtk"))
    # `mtkit fk examples/mtk/trunnion_5axis.mtk`: X Y Z A C, Z at 50 (home).
    assert m.axis_names == ["X", "Y", "Z", "A", "C"]
    near(m.axis_values, [0, 0, 50, 0, 0])
    assert mtkit.Machine(mtkit.read_mtk_file(example("mtk", "trunnion_5axis.mtk"))).axis_names == m.axis_names


def test_the_mill_turn_puts_its_head_and_table_chains_first():
    m = mtkit.Machine.from_file(example("machines", "millturn_turret.json"))
    # As `mtkit fk` lists them.
    assert m.axis_names == ["X", "Y", "Z", "B", "C", "W", "X2", "Z2", "C2", "T"]
    # Homes from `mtkit show`: X1 450, Z1 1000, W 900, X2 260, Z2 700.
    near(m.axis_values, [450, 0, 1000, 0, 0, 900, 260, 700, 0, 0])


def test_a_machine_whose_kinematics_cannot_be_moved_is_refused(tmp_path):
    body = {"units": {"length": "mm", "angle": "degrees"},
            "parts": [{"id": "bed", "type": "static", "parts": [
                {"id": "x_axis", "type": "linear", "name": "X", "control": "driven", "direction": [0, 0, 0],
                 "parts": [{"id": "table", "type": "table"}]},
                {"id": "head", "type": "head"}]}]}
    path = tmp_path / "zero.mtk"
    path.write_text(json.dumps(body))
    with pytest.raises(ValueError) as error:
        mtkit.Machine.from_file(str(path))
    assert str(error.value) == ("'" + str(path) + "': the kinematics cannot be moved:\n"
                                '  part "x_axis": the axis direction is zero or not a finite vector')


def test_a_machine_definition_without_kinematics_is_refused():
    with pytest.raises(ValueError) as error:
        mtkit.Machine(mtkit.MachineDefinition.from_json("{}"))
    assert str(error.value) == "the machine definition has no kinematics"


def test_a_controller_naming_a_missing_head_is_refused(tmp_path):
    with open(example("machines", "vmc_3axis.json")) as f:
        document = json.load(f)
    document["controller"]["default"]["head_info_part_id"] = "nowhere"
    d = mtkit.MachineDefinition.from_json(json.dumps(document))
    assert d.controller.head_part_id == "nowhere"
    with pytest.raises(ValueError) as error:
        mtkit.Machine(d)
    assert str(error.value) == "the controller names a head or table part that is not in the kinematics"


def test_from_file_of_a_missing_file_raises_file_not_found():
    with pytest.raises(FileNotFoundError):
        mtkit.Machine.from_file(example("machines", "none.json"))


# --- forward kinematics ------------------------------------------------------------


def test_vmc_forward_kinematics_as_fk_prints_it():
    m = mtkit.Machine.from_file(example("machines", "vmc_3axis.json"))
    m.move(X=10, Y=-5, Z=-20)
    near(m.axis_values, [10, -5, -20])
    # `mtkit fk examples/machines/vmc_3axis.json X=10 Y=-5 Z=-20`: origin
    # 10 -5 130, axes the identity; tip = origin for a zero tool length.
    expected = np.eye(4)
    expected[:3, 3] = [10, -5, 130]
    near(m.head_frame_in_table(), expected)
    near(m.tool_tip(), [10, -5, 130])
    near(m.tool_axis(), [0, 0, 1])
    # A tool 40 long reaches 40 further down the Z axis.
    near(m.tool_tip(40), [10, -5, 90])


def test_head_table_forward_kinematics_worked_by_hand():
    m = mtkit.Machine.from_file(example("machines", "headtable_5axis.json"))
    m.move({"B": 30, "C": 45}, X=10)
    s, c = math.sin(math.radians(30)), math.cos(math.radians(30))
    r = math.sqrt(0.5)
    # B tilts the tool axis by 30 degrees towards +X, C turns the table 45
    # degrees, which the table sees as -45 degrees.
    axis = [s * r, -s * r, c]
    near(m.tool_axis(), axis)
    frame = m.head_frame_in_table()
    near(frame[:3, 2], axis)
    near(frame[:3, 1], [r, r, 0])
    # `mtkit fk ... B=30 C=45 X=10 --tool-length 100`: origin -81.317280
    # 81.317280 -216.506351; the tip lies 100 against the tool axis.
    origin = np.array([-81.317280, 81.317280, -216.506351])
    near(frame[:3, 3], origin)
    near(m.tool_tip(tool_length=100), origin - 100 * np.array(axis))
    near(m.tool_tip(tool_length=100), [-116.672619, 116.672619, -303.108891])


def test_head_and_table_frames_are_in_machine_coordinates():
    m = mtkit.Machine.from_file(example("machines", "headtable_5axis.json"))
    m.move(X=10, C=45, B=30)
    head, table = m.head_frame(), m.table_frame()
    # The head in the table = the table's inverse applied to the head.
    near(np.linalg.inv(table) @ head, m.head_frame_in_table(), 1e-9)
    assert head.shape == table.shape == (4, 4)
    near(head[3], [0, 0, 0, 1])


def test_forward_kinematics_agrees_with_the_tool():
    if not TOOL:
        pytest.skip("MTKIT_TOOL is not set")
    cases = [("machines", "trunnion_5axis.json", {"A": -30, "C": 90, "X": 5, "Y": 6, "Z": -7}, 20.0),
             ("machines", "headhead_5axis.json", {"B": 15, "C": -60, "Y": 12}, 35.5),
             ("machines", "millturn_turret.json", {"C1": 90}, 0.0),
             ("mtk", "headtable_5axis.mtk", {"B": -45, "C": 10, "Z": -100}, 12.0)]
    for folder, name, axes, length in cases:
        path = example(folder, name)
        m = mtkit.Machine.from_file(path)
        m.move(axes)
        printed, printed_axes = run_tool("fk", path, *[f"{k}={v}" for k, v in axes.items()],
                                         "--tool-length", str(length))
        near(m.axis_values, [printed_axes[n] for n in m.axis_names])
        frame = m.head_frame_in_table()
        near(frame[:3, 3], printed["origin"])
        near(frame[:3, 0], printed["x axis"])
        near(frame[:3, 1], printed["y axis"])
        near(frame[:3, 2], printed["z axis"])
        near(m.tool_tip(length), printed["tool tip"])
        near(m.tool_axis(), printed["tool axis"])


def test_move_by_part_id_and_by_the_kinematics_name():
    m = mtkit.Machine.from_file(example("machines", "millturn_turret.json"))
    m.move(C1=90)
    assert m.axis_values[m.axis_names.index("C")] == 90.0
    m.move({"c1_axis": 30})
    assert m.axis_values[m.axis_names.index("C")] == 30.0
    # `mtkit fk millturn_turret.json C1=90`: origin 0 -450 800.
    m.move(C=90)
    near(m.head_frame_in_table()[:3, 3], [0, -450, 800])


def test_move_of_an_unknown_axis_raises_with_the_axes():
    m = mtkit.Machine.from_file(example("machines", "headtable_5axis.json"))
    with pytest.raises(ValueError) as error:
        m.move(A=30)
    assert str(error.value) == "the machine has no axis named 'A' (axes: X Y Z B C, or their part ids)"


def test_move_to_sets_every_axis_and_checks_the_count():
    m = mtkit.Machine.from_file(example("machines", "headtable_5axis.json"))
    m.move_to([1, 2, -3, 4, 5])
    near(m.axis_values, [1, 2, -3, 4, 5])
    m.move_to(np.array([0.5, 0, 0, 0, 0]))
    near(m.axis_values, [0.5, 0, 0, 0, 0])
    with pytest.raises(ValueError) as error:
        m.move_to([1, 2])
    assert str(error.value) == "move_to() needs 5 values (X Y Z B C), got 2"
    m.move_to_home()
    near(m.axis_values, [0, 0, 0, 0, 0])


def test_move_to_reads_tuples_lists_and_arrays_alike_and_refuses_what_is_not_numbers():
    m = mtkit.Machine.from_file(example("machines", "headtable_5axis.json"))
    m.move_to((1, 2.5, -3, 4, 5))
    near(m.axis_values, [1, 2.5, -3, 4, 5])
    m.move_to([np.float64(1), 2, 3, 4, 5])
    near(m.axis_values, [1, 2, 3, 4, 5])
    with pytest.raises(ValueError) as error:
        m.move_to((1, 2, 3, 4, 5, 6))
    assert str(error.value) == "move_to() needs 5 values (X Y Z B C), got 6"
    with pytest.raises(TypeError) as error:
        m.move_to(["1", 2, 3, 4, 5])
    assert str(error.value) == "move_to() takes a sequence of numbers, one for each axis (X Y Z B C), not list"
    with pytest.raises(TypeError):
        m.move_to(7)
    near(m.axis_values, [1, 2, 3, 4, 5])


def test_tool_tip_at_moves_and_gives_the_tip_in_one_call():
    m = mtkit.Machine.from_file(example("machines", "headtable_5axis.json"))
    # The pose of the hand-worked head-table case above: X=10, B=30, C=45.
    tip = m.tool_tip_at([10, 0, 0, 30, 45], 100)
    near(tip, [-116.672619, 116.672619, -303.108891])
    assert isinstance(tip, np.ndarray) and tip.shape == (3,) and tip.dtype == np.float64
    near(m.axis_values, [10, 0, 0, 30, 45])
    near(m.tool_tip_at(np.array([10.0, 0, 0, 30, 45])), m.head_frame_in_table()[:3, 3])
    # A bad tool length is refused before the machine moves.
    with pytest.raises(ValueError):
        m.tool_tip_at([0, 0, 0, 0, 0], -1)
    near(m.axis_values, [10, 0, 0, 30, 45])


def test_tool_tip_at_takes_its_arguments_as_a_python_function_does():
    m = mtkit.Machine.from_file(example("machines", "headtable_5axis.json"))
    expected = [-116.672619, 116.672619, -303.108891]
    near(m.tool_tip_at(values=[10, 0, 0, 30, 45], tool_length=100), expected)
    near(m.tool_tip_at([10, 0, 0, 30, 45], tool_length=100.0), expected)
    assert str(inspect.signature(mtkit.Machine.tool_tip_at)) == "(values, tool_length=0.0)"
    assert "Forward kinematics in one call" in mtkit.Machine.tool_tip_at.__doc__
    cases = [
        (lambda: m.tool_tip_at(), TypeError, "tool_tip_at() missing required argument 'values'"),
        (lambda: m.tool_tip_at([1, 2, 3, 4, 5], 1, 2), TypeError, "tool_tip_at() takes at most 2 arguments (3 given)"),
        (lambda: m.tool_tip_at([1, 2, 3, 4, 5], length=1), TypeError,
         "tool_tip_at() got an unexpected keyword argument 'length'"),
        (lambda: m.tool_tip_at([1, 2, 3, 4, 5], values=[1, 2, 3, 4, 5]), TypeError,
         "tool_tip_at() got multiple values for argument 'values'"),
        (lambda: m.tool_tip_at([1, 2]), ValueError, "tool_tip_at() needs 5 values (X Y Z B C), got 2"),
        (lambda: m.tool_tip_at([1, 2, 3, 4, 5], "long"), TypeError, None),
        (lambda: mtkit.Machine.tool_tip_at(5, [1, 2, 3, 4, 5]), TypeError, None),
    ]
    for call, kind, text in cases:
        with pytest.raises(kind) as error:
            call()
        if text is not None:
            assert str(error.value) == text
    # No failed call moved the machine from the pose of the calls that worked.
    near(m.axis_values, [10, 0, 0, 30, 45])
    # The solver is a Machine, so it has the call too.
    near(m.solver().tool_tip_at([10, 0, 0, 30, 45], 100), expected)


def test_move_to_and_tool_tip_take_their_arguments_as_python_functions_do():
    m = mtkit.Machine.from_file(example("machines", "vmc_3axis.json"))
    assert str(inspect.signature(mtkit.Machine.move_to)) == "(values)"
    assert str(inspect.signature(mtkit.Machine.tool_tip)) == "(tool_length=0.0)"
    m.move_to(values=[10, -5, -20])
    near(m.tool_tip(tool_length=40), [10, -5, 90])
    cases = [
        (lambda: m.move_to(), "move_to() missing required argument 'values'"),
        (lambda: m.move_to([1, 2, 3], [4]), "move_to() takes at most 1 argument (2 given)"),
        (lambda: m.tool_tip(1, 2), "tool_tip() takes at most 1 argument (2 given)"),
        (lambda: m.tool_tip(length=1), "tool_tip() got an unexpected keyword argument 'length'"),
    ]
    for call, text in cases:
        with pytest.raises(TypeError) as error:
            call()
        assert str(error.value) == text
    near(m.axis_values, [10, -5, -20])


def test_a_negative_tool_length_is_refused():
    m = mtkit.Machine.from_file(example("machines", "vmc_3axis.json"))
    with pytest.raises(ValueError) as error:
        m.tool_tip(-1)
    assert str(error.value) == "the tool length must be a finite number of mm, not negative, not -1.0"


# --- travel ------------------------------------------------------------------


def test_travel_of_limited_and_unlimited_axes():
    m = mtkit.Machine.from_file(example("machines", "headtable_5axis.json"))
    # `mtkit show`: X -600..600, Y -350..350, Z -600..0 mm, B -120..120 deg,
    # C unlimited.
    assert m.travel("X") == (-600.0, 600.0)
    assert m.travel("Z") == (-600.0, 0.0)
    assert m.travel("b_axis") == (-120.0, 120.0)
    assert m.travel("C") is None
    with pytest.raises(ValueError):
        m.travel("Q")


def test_out_of_travel_names_the_axes_beyond_their_limits():
    m = mtkit.Machine.from_file(example("machines", "headtable_5axis.json"))
    assert m.out_of_travel() == []
    m.move(Z=0.0000005, B=-121, C=100000)
    # Within 1e-6 of a limit is inside; an unlimited axis is never outside.
    assert m.out_of_travel() == ["B"]
    m.move(Z=0.01, X=float("nan"))
    assert m.out_of_travel() == ["Z", "B"]


# --- the solver ----------------------------------------------------------------


def test_solver_moves_the_tool_tip_as_ik_prints_it():
    m = mtkit.Machine.from_file(example("machines", "headtable_5axis.json"))
    m.move(B=30)
    solver = m.solver()
    values, distance = solver.move_tool_tip_to([10, 20, -30], tool_length=50)
    # `mtkit ik ... --tip 10,20,-30 B=30 --tool-length 50`: X=160, Y=20,
    # Z=229.807621 (out of travel), distance left 0. By hand: the tool axis is
    # (sin 30, 0, cos 30), so the tip stands 50 * that below the attach frame.
    near(values, [160, 20, 229.807621, 30, 0])
    assert distance == pytest.approx(0.0, abs=1e-9)
    near(solver.tool_tip(50), [10, 20, -30], 1e-9)
    near(solver.tool_axis(), [0.5, 0, math.cos(math.radians(30))])
    assert solver.out_of_travel() == ["Z"]
    near(solver.axis_values, values)


def test_moving_the_solver_leaves_the_machine_where_it_was():
    m = mtkit.Machine.from_file(example("machines", "vmc_3axis.json"))
    before = m.axis_values.copy()
    solver = m.solver()
    values, distance = solver.move_tool_tip_to((1, 2, 3))
    near(m.axis_values, before)
    near(solver.tool_tip(), [1, 2, 3], 1e-9)
    assert isinstance(solver, mtkit.Machine)


def test_solver_agrees_with_the_tool():
    if not TOOL:
        pytest.skip("MTKIT_TOOL is not set")
    path = example("machines", "trunnion_5axis.json")
    m = mtkit.Machine.from_file(path)
    m.move(A=-20, C=30)
    values, distance = m.solver().move_tool_tip_to([12.5, -7, 40], tool_length=25)
    printed, printed_axes = run_tool("ik", path, "--tip", "12.5,-7,40", "A=-20", "C=30", "--tool-length", "25")
    near(values, [printed_axes[n] for n in m.axis_names])
    near([distance], printed["distance left"])


def test_a_machine_with_one_linear_axis_has_no_solver():
    body = {"units": {"length": "mm", "angle": "degrees"},
            "parts": [{"id": "bed", "type": "static", "parts": [
                {"id": "x_axis", "type": "linear", "name": "X", "control": "driven", "direction": [1, 0, 0],
                 "parts": [{"id": "table", "type": "table"}]},
                {"id": "head", "type": "head"}]}]}
    m = mtkit.Machine(mtkit.KinematicsDefinition.from_json(json.dumps(body)))
    assert m.axis_names == ["X"]
    with pytest.raises(ValueError) as error:
        m.solver()
    assert str(error.value) == "fewer than two primary linear axes on the head and table chains; nothing to solve"


def test_the_machine_keeps_its_own_definitions():
    m = mtkit.Machine.from_file(example("machines", "millturn_turret.json"))
    assert m.kinematics.find("turret").turret_indexes == 12
    assert m.controller.head_part_id == "milling_head"
    k = m.kinematics
    del m
    import gc
    gc.collect()
    assert k.find("b_axis").axis.limits == (-30.0, 210.0)


def test_machine_and_solver_reprs():
    m = mtkit.Machine.from_file(example("machines", "vmc_3axis.json"))
    m.move(X=1.5)
    assert repr(m) == "<Machine X=1.5 Y=255.0 Z=0.0>"
    assert repr(m.solver()) == "<Solver X=1.5 Y=255.0 Z=0.0>"
