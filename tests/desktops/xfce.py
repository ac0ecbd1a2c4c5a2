"""Xfce's panel with its tray, and its window manager."""

from tests.desktops.description import Description

PANEL = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="26"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
        <value type="int" value="3"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="applicationsmenu"/>
    <property name="plugin-2" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
    </property>
    <property name="plugin-3" type="string" value="systray"/>
  </property>
</channel>
"""

DESKTOPS = {"xfce": Description(
    title="Xfce",
    packages=("xfce4-panel", "xfwm4", "xfce4-settings", "xfconf"),
    programs={"xfsettingsd": ["xfsettingsd", "--no-daemon"], "window-manager": ["xfwm4"], "xfce4-panel": ["xfce4-panel"]},
    panel=("xfce4-panel",),
    files={".config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml": PANEL},
    environment={"XDG_CURRENT_DESKTOP": "XFCE"},
)}
