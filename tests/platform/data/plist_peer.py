"""The other side of the property-list tests: Python's own plistlib.

plist_peer.py read               lists in hexadecimal, one a line -> their values in tagged JSON, one a line
plist_peer.py write xml|binary   the same the other way

Tagged JSON is [type, content]: ["integer", "12"], ["real", the eight bytes in hexadecimal], ["date", seconds since
1970], ["data", hexadecimal], ["array", [value, ...]], ["dict", {key: value, ...}], ["string", text], ["bool", true].
"""

import datetime
import json
import plistlib
import struct
import sys

EPOCH = datetime.datetime(1970, 1, 1)


class NegativeZero(float):
    """plistlib's binary writer stores equal values of one type once, and -0.0 equals 0.0."""


def tagged(value):
    if isinstance(value, bool):
        return ["bool", value]
    if isinstance(value, int):
        return ["integer", str(value)]
    if isinstance(value, float):
        return ["real", struct.pack(">d", value).hex()]
    if isinstance(value, str):
        return ["string", value]
    if isinstance(value, bytes):
        return ["data", value.hex()]
    if isinstance(value, datetime.datetime):
        return ["date", (value - EPOCH) // datetime.timedelta(seconds=1)]
    if isinstance(value, list):
        return ["array", [tagged(element) for element in value]]
    if isinstance(value, dict):
        return ["dict", {key: tagged(element) for key, element in value.items()}]
    raise TypeError(type(value))


def untagged(value):
    kind, content = value
    if kind == "integer":
        return int(content)
    if kind == "real":
        real = struct.unpack(">d", bytes.fromhex(content))[0]
        return NegativeZero(real) if real == 0 and content.startswith("8") else real
    if kind == "data":
        return bytes.fromhex(content)
    if kind == "date":
        return EPOCH + datetime.timedelta(seconds=content)
    if kind == "array":
        return [untagged(element) for element in content]
    if kind == "dict":
        return {key: untagged(element) for key, element in content.items()}
    return content


def main():
    for line in sys.stdin:
        if sys.argv[1] == "read":
            print(json.dumps(tagged(plistlib.loads(bytes.fromhex(line)))))
        else:
            formats = {"xml": plistlib.FMT_XML, "binary": plistlib.FMT_BINARY}
            print(plistlib.dumps(untagged(json.loads(line)), fmt=formats[sys.argv[2]]).hex())


main()
