"""Machine files, MTK files, definitions, features, parts and axes from Python."""

import json
import math
import os

import numpy as np
import pytest

import mtkit

EXAMPLES = os.environ.get("MTKIT_EXAMPLES_DIR", os.path.join(os.path.dirname(__file__), "..", "..", "examples"))


def example(*parts):
    return os.path.join(EXAMPLES, *parts)


def write_text(tmp_path, name, text):
    path = tmp_path / name
    path.write_text(text)
    return str(path)


MM_DEG = {"length": "mm", "angle": "degrees"}


def small_mtk(direction=(1, 0, 0), head=True, table=True):
    """A bed with one linear axis X carrying the table, and a head on the bed."""
    x_children = [{"id": "table", "type": "table"}] if table else []
    bed_children = [{"id": "x_axis", "type": "linear", "name": "X", "control": "driven",
                     "direction": list(direction),
                     "min": -100, "max": 100, "parts": x_children}]
    if head:
        bed_children.append({"id": "head", "type": "head"})
    return {"units": MM_DEG, "parts": [{"id": "bed", "type": "static", "parts": bed_children}]}


# --- reading -----------------------------------------------------------------


def test_read_machine_file_gives_the_general_fields():
    d = mtkit.read_machine_file(example("machines", "vmc_3axis.json"))
    # As `mtkit show` prints them.
    assert d.vendor == "Orvo Demo Works"
    assert d.model == "VM-3 760"
    assert d.description == "Three-axis vertical machining centre, 760 x 510 x 510 mm"
    assert d.capabilities == {"milling"}
    assert d.defaults == {"controller": "default", "kinematics": "default"}


def test_features_come_in_the_order_of_the_file_keys_with_their_types():
    d = mtkit.read_machine_file(example("machines", "vmc_3axis.json"))
    # `mtkit check` lists: controller, interactions, kinematics, machining,
    # post, post_settings, tooling (sorted keys).
    assert [(f.type, f.id) for f in d.features] == [
        ("controller", "default"), ("interactions", "default"), ("kinematics", "default"),
        ("machining", "default"), ("post", "default"), ("post_settings", "default"), ("tooling", "default")]
    assert all(f.is_default for f in d.features)


def test_known_features_come_as_their_own_classes():
    d = mtkit.read_machine_file(example("machines", "vmc_3axis.json"))
    kinds = {f.type: type(f) for f in d.features}
    assert kinds["kinematics"] is mtkit.KinematicsDefinition
    assert kinds["controller"] is mtkit.ControllerConfiguration
    assert kinds["tooling"] is mtkit.Feature
    assert isinstance(d.kinematics, mtkit.Feature)


def test_several_features_of_a_type_and_the_default_among_them():
    d = mtkit.read_machine_file(example("machines", "millturn_turret.json"))
    controllers = [f for f in d.features if f.type == "controller"]
    # `mtkit show`: "default" (default), "lower_turret", "sub_spindle".
    assert [c.id for c in controllers] == ["default", "lower_turret", "sub_spindle"]
    assert [c.is_default for c in controllers] == [True, False, False]
    assert d.controller.id == "default"
    assert d.feature("controller", "lower_turret").head_part_id == "turret"
    assert d.feature("controller", "nothing") is None
    assert d.feature("no_such_type") is None


def test_feature_data_is_the_json_body():
    d = mtkit.read_machine_file(example("machines", "vmc_3axis.json"))
    post = d.feature("post")
    with open(example("machines", "vmc_3axis.json")) as f:
        document = json.load(f)
    assert post.data == document["post"]["default"]
    assert json.loads(post.to_json()) == post.data
    # `mtkit show`: post "posts/vmc_3axis.cps", 4 properties.
    assert post.data["path"] == "posts/vmc_3axis.cps"
    assert len(post.data["properties"]) == 4


def test_feature_equals_compares_the_json_within_a_tolerance():
    a = mtkit.MachineDefinition.from_json('{"machining": {"default": {"feedrate_ratio": 0.95}}}')
    b = mtkit.MachineDefinition.from_json('{"machining": {"default": {"feedrate_ratio": 0.9500001}}}')
    fa, fb = a.feature("machining"), b.feature("machining")
    assert not fa.equals(fb)
    assert fa.equals(fb, tolerance=1e-3)


def test_an_unknown_feature_type_is_kept_and_written_back():
    d = mtkit.MachineDefinition.from_json('{"gizmo": {"one": {"k": [1, 2.5, "x", null, true]}}}')
    (f,) = d.features
    assert (f.type, f.id, type(f)) == ("gizmo", "one", mtkit.Feature)
    assert f.data == {"k": [1, 2.5, "x", None, True]}
    assert d.to_dict()["gizmo"] == {"one": {"k": [1, 2.5, "x", None, True]}}


def test_controller_configuration_names_its_axes():
    c = mtkit.read_machine_file(example("machines", "millturn_turret.json")).controller
    # `mtkit show`: head: milling_head, table: primary_spindle; b_axis B,
    # c1_axis C, x1_axis X, y1_axis Y, z1_axis Z.
    assert c.head_part_id == "milling_head"
    assert c.table_part_id == "primary_spindle"
    assert c.axis_names == {"b_axis": "B", "c1_axis": "C", "x1_axis": "X", "y1_axis": "Y", "z1_axis": "Z"}
    assert isinstance(c.data, dict) and "parts" in c.data


def test_read_machine_file_of_a_missing_file_raises_file_not_found():
    path = example("machines", "no_such_machine.json")
    with pytest.raises(FileNotFoundError) as error:
        mtkit.read_machine_file(path)
    assert isinstance(error.value, OSError)
    assert error.value.filename == path
    assert error.value.strerror == "No such file or directory"


def test_read_mtk_file_of_a_directory_raises_is_a_directory():
    with pytest.raises(IsADirectoryError):
        mtkit.read_mtk_file(EXAMPLES)


def test_a_machine_file_that_is_not_json_raises_the_readers_syntax_message(tmp_path):
    path = write_text(tmp_path, "bad.json", "{ nope")
    with pytest.raises(ValueError) as error:
        mtkit.read_machine_file(path)
    assert str(error.value).startswith(
        "Error reading Machine Definition data from machine file:\n\n"
        "The file reader encountered a syntax error:\n\n* Line 1, Column 3\n")


def test_a_machine_file_of_a_newer_revision_raises_the_readers_message(tmp_path):
    path = write_text(tmp_path, "new.json", '{"general": {"minimumRevision": 45806}}')
    with pytest.raises(ValueError) as error:
        mtkit.read_machine_file(path)
    assert str(error.value) == ("Error reading Machine Definition data from machine file:\n\n"
                                "The machine has newer version, and cannot be loaded.")


def test_an_mtk_file_with_other_units_raises_the_readers_message(tmp_path):
    path = write_text(tmp_path, "inch.mtk", json.dumps({"units": {"length": "inch", "angle": "degrees"},
                                                        "parts": []}))
    with pytest.raises(ValueError) as error:
        mtkit.read_mtk_file(path)
    assert str(error.value).startswith("Error reading Machine Tool Kinematics (MTK) data from machine file:\n\n"
                                       "Can't read the units. All units must be specified in \"mm\" or \"degrees\".")


# --- writing -----------------------------------------------------------------


def test_writing_a_machine_file_and_reading_it_back_gives_the_same_document(tmp_path):
    d = mtkit.read_machine_file(example("machines", "headtable_5axis.json"))
    path = str(tmp_path / "copy.json")
    d.write(path)
    again = mtkit.read_machine_file(path)
    assert again.to_dict() == d.to_dict()
    with open(path) as f:
        assert json.load(f) == json.loads(d.to_json())
    assert d.to_dict()["general"]["minimumRevision"] == 45805


def test_an_empty_machine_writes_general_only():
    d = mtkit.MachineDefinition.from_json("{}")
    assert d.features == []
    assert d.to_dict() == {"general": {"capabilities": None, "minimumRevision": 45805}}


def test_the_general_texts_can_be_changed_and_are_written():
    d = mtkit.MachineDefinition.from_json("{}")
    d.vendor = "Acme"
    d.model = "M1"
    assert d.to_dict()["general"]["vendor"] == "Acme"
    assert d.to_dict()["general"]["model"] == "M1"


def test_write_to_a_missing_folder_raises_file_not_found(tmp_path):
    d = mtkit.MachineDefinition.from_json("{}")
    with pytest.raises(FileNotFoundError):
        d.write(str(tmp_path / "no" / "such" / "m.json"))


def test_writing_an_mtk_file_and_reading_it_back_gives_the_same_kinematics(tmp_path):
    k = mtkit.read_mtk_file(example("mtk", "trunnion_5axis.mtk"))
    path = str(tmp_path / "copy.mtk")
    k.write(path)
    again = mtkit.read_mtk_file(path)
    assert json.loads(again.to_json()) == json.loads(k.to_json())
    assert again.data == k.data
    assert k.data["units"] == {"angle": "degrees", "length": "mm"}


# --- kinematics, parts, axes ---------------------------------------------------


def test_kinematics_tree_of_the_vmc():
    k = mtkit.read_machine_file(example("machines", "vmc_3axis.json")).kinematics
    # `mtkit show`: bed [static] > y_axis > x_axis > table; bed > column >
    # z_axis > spindle_head.
    assert [p.id for p in k.parts] == ["bed"]
    assert [p.id for p in k.all_parts] == ["bed", "y_axis", "x_axis", "table", "column", "z_axis",
                                           "spindle_head"]
    assert [p.type for p in k.all_parts] == ["static", "linear", "linear", "table", "static", "linear", "head"]
    assert k.heads == ["spindle_head"] and k.tables == ["table"]
    assert k.handedness == "right-handed"
    assert k.problems() == []
    bed = k.parts[0]
    assert bed.display_name == "Machine bed"
    assert [c.id for c in bed.children] == ["y_axis", "column"]
    assert bed.parent is None
    assert k.find("table").parent.id == "x_axis"
    assert k.find("nothing") is None


def test_linear_axis_definition():
    y = mtkit.read_machine_file(example("machines", "vmc_3axis.json")).kinematics.find("y_axis").axis
    # `mtkit show`: axis Y driven, -255..255 mm, home 255 mm, step 0.001 mm,
    # along (0, -1, 0).
    assert (y.type, y.unit, y.name, y.control) == ("linear", "mm", "Y", "driven")
    assert y.limits == (-255.0, 255.0)
    assert y.home == 255.0
    assert y.step_size == 0.001
    assert y.tool_change_position is None
    np.testing.assert_array_equal(y.direction, [0.0, -1.0, 0.0])
    assert y.point is None and y.offset is None
    z = mtkit.read_machine_file(example("machines", "vmc_3axis.json")).kinematics.find("z_axis").axis
    assert z.tool_change_position == 0.0


def test_rotary_axis_definitions():
    k = mtkit.read_machine_file(example("machines", "millturn_turret.json")).kinematics
    c1 = k.find("c1_axis")
    # `mtkit show`: c1_axis [rotary] "Main spindle C axis" axis C1 driven,
    # unlimited, step 0.001 deg, about (0, 0, 1) through (0, 0, 0).
    assert c1.display_name == "Main spindle C axis"
    assert (c1.axis.type, c1.axis.unit, c1.axis.name) == ("rotary", "deg", "C1")
    assert c1.axis.limits is None
    np.testing.assert_array_equal(c1.axis.direction, [0.0, 0.0, 1.0])
    np.testing.assert_array_equal(c1.axis.point, [0.0, 0.0, 0.0])
    b = k.find("b_axis").axis
    # axis B driven, -30..210 deg, about (0, 1, 0).
    assert b.limits == (-30.0, 210.0)
    np.testing.assert_array_equal(b.direction, [0.0, 1.0, 0.0])
    turret = k.find("turret")
    # axis T ancillary, step 30 deg, turret of 12 indexes.
    assert turret.axis.control == "ancillary"
    assert turret.axis.step_size == 30.0
    assert turret.turret_indexes == 12
    assert k.find("b_axis").turret_indexes is None


def test_spindle_and_tool_station_of_a_head():
    head = mtkit.read_machine_file(example("machines", "vmc_3axis.json")).kinematics.find("spindle_head")
    # `mtkit show`: spindle 50..12000, tool station BT40 coolants
    # air,flood,through_tool.
    assert head.spindle.min_speed == 50.0
    assert head.spindle.max_speed == 12000.0
    assert head.tool_station.tool_interface == "BT40"
    assert head.tool_station.coolants == {"air", "flood", "through_tool"}
    assert head.axis is None
    table = mtkit.read_machine_file(example("machines", "vmc_3axis.json")).kinematics.find("table")
    assert table.spindle is None and table.tool_station is None


def test_attach_frame_is_a_4x4_matrix():
    k = mtkit.read_mtk_file(example("mtk", "trunnion_5axis.mtk"))
    with open(example("mtk", "trunnion_5axis.mtk")) as f:
        document = json.load(f)

    def find(parts, wanted):
        for p in parts:
            if p["id"] == wanted:
                return p
            found = find(p.get("parts", []), wanted)
            if found:
                return found
        return None

    for part in k.all_parts:
        frame = part.attach_frame
        assert frame.shape == (4, 4) and frame.dtype == np.float64
        np.testing.assert_array_equal(frame[3], [0.0, 0.0, 0.0, 1.0])
        # The columns are unit axes, z = x cross y.
        np.testing.assert_allclose(np.cross(frame[:3, 0], frame[:3, 1]), frame[:3, 2], atol=1e-12)
        written = find(document["parts"], part.id).get("attach_frame")
        if written is None:
            np.testing.assert_array_equal(frame, np.eye(4))


def test_a_left_handed_mtk_file():
    k = mtkit.read_mtk_file(example("mtk", "headtable_5axis.mtk"))
    assert k.handedness == "left-handed"
    assert k.is_default is False


# --- check -------------------------------------------------------------------


def test_check_of_good_files_is_empty():
    for name in os.listdir(example("machines")):
        assert mtkit.check(example("machines", name)) == [], name
    for name in os.listdir(example("mtk")):
        assert mtkit.check(example("mtk", name)) == [], name


def test_check_lists_a_zero_direction(tmp_path):
    path = write_text(tmp_path, "zero.mtk", json.dumps(small_mtk(direction=(0, 0, 0))))
    assert mtkit.check(path) == ['part "x_axis": the axis direction is zero or not a finite vector']


def test_check_lists_a_missing_head_and_table_of_a_machine_file(tmp_path):
    body = small_mtk(head=False, table=False)
    path = write_text(tmp_path, "m.json", json.dumps({"kinematics": {"default": body}}))
    assert mtkit.check(path) == ["the kinematics has no head part", "the kinematics has no table part"]


def test_check_of_an_unreadable_file_raises(tmp_path):
    with pytest.raises(FileNotFoundError):
        mtkit.check(str(tmp_path / "none.json"))
    with pytest.raises(ValueError):
        mtkit.check(write_text(tmp_path, "bad.json", "[1,"))


# --- representations -----------------------------------------------------------


def test_every_class_has_a_repr():
    d = mtkit.read_machine_file(example("machines", "vmc_3axis.json"))
    assert repr(d) == "<MachineDefinition vendor='Orvo Demo Works' model='VM-3 760' features=7>"
    assert repr(d.kinematics) == "<KinematicsDefinition id='default' parts=7 axes=3>"
    assert repr(d.controller) == "<ControllerConfiguration id='default' head='spindle_head' table='table' entries=3>"
    assert repr(d.feature("tooling")) == "<Feature type='tooling' id='default'>"
    k = d.kinematics
    assert repr(k.find("y_axis")) == "<Part 'y_axis' linear axis Y>"
    assert repr(k.find("y_axis").axis) == "<AxisDefinition Y linear driven -255.0..255.0 mm>"
    assert repr(k.find("spindle_head").spindle) == "<Spindle 50.0..12000.0>"
    assert repr(k.find("spindle_head").tool_station) == "<ToolStation BT40>"


def test_every_function_and_class_has_a_docstring():
    names = ["read_machine_file", "read_mtk_file", "check", "MachineDefinition", "Feature", "KinematicsDefinition",
             "ControllerConfiguration", "Part", "AxisDefinition", "Spindle", "ToolStation", "Machine", "Solver"]
    for name in names:
        thing = getattr(mtkit, name)
        assert thing.__doc__ and thing.__doc__.strip(), name
        if isinstance(thing, type):
            for attribute, member in vars(thing).items():
                if attribute.startswith("_"):
                    continue
                assert member.__doc__ and member.__doc__.strip(), name + "." + attribute


def test_a_part_outlives_its_definition():
    part = mtkit.read_machine_file(example("machines", "vmc_3axis.json")).kinematics.find("y_axis")
    import gc
    gc.collect()
    assert part.axis.name == "Y"
    assert math.isclose(part.axis.limits[1], 255.0)
