#pragma once

/// Keeps Qt from asking the desktop portal, as the application object is made, what it can do.
///
/// Symptom: Qt asks org.freedesktop.portal.Desktop for the version of its screenshots, and a bus may start a program
///   for whoever asks it. Without a bus, what waits for the answer is never freed.
/// Of: Qt 6.8, QGenericUnixServices; neither 6.4 nor 6.11 does it. No report found.
/// Left out: a portal in each session that has one to start, and no other use for it.
/// Still needed? WorkaroundNeed.PortalQuestion tells.
namespace PortalQuestion
{

/// Before the application object is made. A choice of the user's (QT_NO_XDG_DESKTOP_PORTAL) stays.
void avoid();
/// Behind it: programs that are started from here may ask.
void allow();

} // namespace PortalQuestion
