#pragma once

/// The path of the service's command-line tool; set when the agent is built.
extern const char *const serviceTool;
