#pragma once

/// Takes the death of the session manager for what it is, the end of the session, which `end` brings about in order. To
/// be called before the application object is made.
///
/// Symptom: a session manager that goes without a word has ended the session, too; the library of its protocol then
///   calls exit() there and then, with status 1 and in the middle of whatever is done.
/// Of: libICE, all versions, as Qt uses it (6.4 to 6.11). https://bugreports.qt.io/browse/QTBUG-53678
/// Left out: nothing is saved at such an end, and the message on the screen is lost.
/// Still needed? WorkaroundNeed.SessionManagerDeath tells.
void endInOrderWhenTheSessionManagerDies(void (*end)());
