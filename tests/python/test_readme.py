"""The README's Python example runs as it stands and prints what it says."""

import contextlib
import io
import os
import re
from pathlib import Path


def test_readme_python_example_runs():
    root = Path(os.environ["MTKIT_EXAMPLES_DIR"]).parent
    readme = (root / "README.md").read_text(encoding="utf-8")
    blocks = re.findall(r"```python\n(.*?)```", readme, re.S)
    assert len(blocks) == 1
    out = io.StringIO()
    cwd = os.getcwd()
    os.chdir(root)
    try:
        with contextlib.redirect_stdout(out):
            exec(compile(blocks[0], "README.md", "exec"), {})
    finally:
        os.chdir(cwd)
    lines = out.getvalue().splitlines()
    assert len(lines) == 3
    assert lines[2] == "['X', 'Y', 'Z', 'A', 'C'] (185, 5) 1"
    assert lines[0].endswith("[]")
