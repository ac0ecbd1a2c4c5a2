#include "shell/PreferencesPane.h"

const char *const preferencesPane = "/Library/PreferencePanes/kivserverp.prefPane";
