#pragma once

/// Has Qt interpret regular expressions instead of compiling them to machine code. To be called before the first of
/// them is used; main thread only.
///
/// Symptom: the first pattern that is matched brings a compiler's memory with it, 16 kB of it for code. The patterns
///   here are short and meet short texts, and most of them one a day.
/// Of: Qt 6.4 to 6.11, QRegularExpression, by its design. No report found.
/// Left out: 20 to 30 kB a session.
/// Still needed? WorkaroundMemory.CompiledPatterns tells.
void keepQtFromCompilingPatterns();
