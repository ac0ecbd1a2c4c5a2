#pragma once

#include <Carbon/Carbon.h>

#include <cstdint>
#include <optional>
#include <sys/types.h>

/// Builds, sends and compares events of the link with the service. Each failure is one line in the system log, and the
/// result says so. Main thread only.

/// Builds an event of the link in *event: from one process to another, with its command and its sender set; the caller
/// adds the other parameters and disposes of it. False, without a log line, when a pointer is null or `command` is 0.
[[nodiscard]] bool kivmAECreateEvent(const ProcessSerialNumber *from, const ProcessSerialNumber *to,
                                     std::uint32_t command, AppleEvent *event);

/// Sends; waits for the reply only if `wantReply`. `reply` may be null when none is wanted.
bool kivmAESendEvent(const AppleEvent *event, AppleEvent *reply, bool wantReply);

/// Disposes of the event. Null is allowed.
void kivmAEDisposeEvent(AppleEvent *event);

/// Nothing when no running process has that serial number.
[[nodiscard]] std::optional<pid_t> processId(const ProcessSerialNumber &process);

/// True only when both are given and name the same process; no process is never the same as no process.
[[nodiscard]] bool kivmAESameProcess(const ProcessSerialNumber *a, const ProcessSerialNumber *b);

/// Whether the transport knows the event to come from another process than the running one that it names as its sender.
/// False when the transport does not know.
[[nodiscard]] bool kivmAEIsForged(const AppleEvent *event, const ProcessSerialNumber *claimedSender);
