#!/usr/bin/env python3
"""Prints the feed of support messages that the demonstration serves.

Every message is for everybody and always; see notify/feed/FeedParser.h for what an element may say.
"""

import base64
from xml.sax.saxutils import escape

MESSAGES = [
    ("update", "high", "text/html", """<b>Kivune Server 3.3 is available.</b>
Sessions start twice as fast, and the clipboard carries pictures.
<a href="https://www.kivune.example/releases/3.3">What is new in version 3.3</a>"""),
    ("warning", "high", "text/plain", """This host restarts tonight at 22:00 for maintenance.
Please save your work and disconnect before then. Sessions that are left open are ended."""),
    ("news", "medium", "text/html", """Kivune now has a <a href="https://www.kivune.example/gallery">gallery</a>
of workspaces that other teams have set up. Pick one and make it yours."""),
    ("notice", "low", "text/plain", """Your administrator has set up a shared folder for this workspace.
How to reach it is described at https://www.kivune.example/help/folders."""),
]

FOR_EVERYBODY = {
    "messageLevel": "any", "messageRepeat": "1", "productCode": "any", "licenseType": "any", "minVersion": "any",
    "maxVersion": "any", "buildDate": "any", "systemCode": "any", "minSysVer": "any", "maxSysVer": "any",
    "minDate": "any", "maxDate": "any", "contentEncoding": "base64", "contentWidth": "auto", "contentHeight": "auto",
}


def message(number, kind, priority, content_type, text):
    if content_type == "text/plain":
        text = text.replace("\n", " ")  # The pop-up breaks the lines.
    fields = FOR_EVERYBODY | {
        "messageId": str(number), "messageType": kind, "messagePriority": priority, "contentType": content_type,
        "contentData": base64.b64encode(text.encode()).decode(),
    }
    return "".join(f"    <{name}>{escape(value)}</{name}>\n" for name, value in fields.items())


print('<?xml version="1.0" encoding="UTF-8"?>\n<supportMessages>')
for number, fields in enumerate(MESSAGES, start=1):
    print(f"  <supportMessage>\n{message(number, *fields)}  </supportMessage>")
print("</supportMessages>")
