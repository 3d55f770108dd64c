// How the program's stop reaches the platform layer.
//
// A first stop (Ctrl+C) cancels what the layer is doing at length: reads,
// copies (moves across file systems included) and waits for a file lock end
// within about 100 ms with ERROR_OPERATION_ABORTED (995), and later ones fail
// the same way at once, until ResumeLongOperations. A program that must end
// at once (a second Ctrl+C) first calls AbandonPendingFiles, so that it
// leaves no half-written file and loses no file that a move had set aside.
//
// The state is one per process: the zt executable exports these symbols, so
// a package that carries its own copy of the layer binds to the host's.
// Thread use: any thread.
#pragma once

namespace zt::platform {

void CancelLongOperations();
void ResumeLongOperations();
bool LongOperationsCancelled();

// Removes every temporary file the layer is writing (copies, replacements,
// new files a copy has not finished) and puts back every file set aside by a
// pending delete (files.h, TPendingDelete); an aside file whose name has
// been taken by a finished move is removed instead. From then on every
// operation that would create, rename or remove such a file waits for the
// program's end, so none starts behind its back. Call it only on the way out.
void AbandonPendingFiles();

}  // namespace zt::platform
