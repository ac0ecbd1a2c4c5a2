#pragma once

/// Keeps Qt from asking the desktop portal, as the application object is made, what it can do.
///
/// Symptom: Qt asks org.freedesktop.portal.Desktop for the version of its screenshots, which a bus answers by starting
///   the portal, and the portal others, where none runs yet. Without a bus, what waits for the answer is never freed.
/// Of: Qt 6.8, QGenericUnixServices; neither 6.4 nor 6.11 does it. No report found.
/// Left out: up to three programs more in each session of a desktop that has no other use for them.
/// Still needed? WorkaroundNeed.PortalQuestion tells.
namespace PortalQuestion
{

/// Before the application object is made. A choice of the user's (QT_NO_XDG_DESKTOP_PORTAL) stays.
void avoid();
/// Behind it: programs that are started from here may ask.
void allow();

} // namespace PortalQuestion
