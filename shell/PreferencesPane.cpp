#include "shell/PreferencesPane.h"

// Alone in its file, so that a program that is linked with another definition gets a pane of its own.
const char *const preferencesPane = KIV_PREFERENCES_PANE;
