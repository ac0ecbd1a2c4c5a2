#pragma once

/// Has all threads take their memory from one heap. To be called while there is but one thread.
///
/// Symptom: each thread gets a heap of its own, of which it uses little: Qt's readers of the X connection and of the
///   bus hardly allocate at the same time as the main thread, which is what the heaps are for.
/// Of: the GNU C library, by its design. No report found.
/// Left out: 20 kB and more a session, as the threads use it, and what they share out cannot be given back.
/// Still needed? WorkaroundMemory.ThreadHeaps tells.
void keepThreadsOnOneHeap();
