"""split-information.py BUNDLE CONFIGURATION: takes an administrator's part of BUNDLE's Info.plist to CONFIGURATION.

What else is in it, the version above all, becomes BUNDLE/Build.plist and follows the program: an upgrade must neither
leave it behind with a file that the administrator keeps, nor ask about it.
"""

import pathlib
import plistlib
import sys

ADMINISTRATORS = ("KIVPrivateLabel", "KIVProductCopyright", "KIVProductHome", "KIVProductSupport", "KIVSupportMessages")

bundle, configuration = map(pathlib.Path, sys.argv[1:])
whole = bundle / "Info.plist"
values = plistlib.loads(whole.read_bytes())
configuration.mkdir(parents=True)
(configuration / whole.name).write_bytes(plistlib.dumps({key: values.pop(key) for key in ADMINISTRATORS}))
(bundle / "Build.plist").write_bytes(plistlib.dumps(values))
whole.unlink()
