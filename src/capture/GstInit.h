#pragma once

// Initialises GStreamer once per process and registers the program's own
// elements and the simulated-camera device provider. False when GStreamer
// cannot start (its error goes to the debug output).
bool EnsureGStreamer();
