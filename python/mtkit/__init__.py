"""mtkit: machine tool kinematics for computer-aided manufacturing.

The classes come from the compiled extension ``mtkit._mtkit``; this package
gives them their Python names.
"""

from ._mtkit import *  # noqa: F401,F403
from ._mtkit import __version__  # noqa: F401
