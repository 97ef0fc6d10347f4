"""The package imports and says what it is."""

import mtkit


def test_version_is_the_library_version():
    assert mtkit.__version__ == "0.1.0"


def test_script_error_is_a_runtime_error():
    assert issubclass(mtkit.ScriptError, RuntimeError)
