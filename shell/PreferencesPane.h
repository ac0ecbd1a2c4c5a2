#pragma once

/// What Server Preferences opens; set when the agent is built. A path that begins without a slash leads there from the
/// agent's folder.
extern const char *const preferencesPane;
