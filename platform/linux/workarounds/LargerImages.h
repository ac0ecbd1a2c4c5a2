#pragma once

/// Keeps Qt from looking for larger images than those that a text names. To be called before the application object is
/// made; programs that are started from here inherit it.
///
/// Symptom: on a screen with a scale Qt looks for "name@2x" beside each image that a text names, before it asks the
///   text view, which gives nothing out. The name may lie on a file server that is gone, and the look waits for that.
/// Of: Qt 6.4 to 6.11, QTextDocument. No report found.
/// Left out: a message of the feed can stop the agent on a screen with a scale.
/// Still needed? WorkaroundNeed.LargerImages tells.
void keepQtFromLookingForLargerImages();
